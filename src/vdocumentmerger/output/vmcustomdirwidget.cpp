#include "output/vmcustomdirwidget.h"

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QStandardPaths>

#include "host/liolite.h"
#include "shell/vmenv.h"
#include "table/vmelidedtextlabel.h"

namespace {
constexpr int MaxLabelWidth = 156;
}

VMCustomDirWidget::VMCustomDirWidget(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(int(VLiteStyle::dpiScaled(6)));

    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    m_folderLabel = new VMElidedTextLabel(this);
    m_folderLabel->setObjectName(QStringLiteral("VMCustomDirLabel"));
    m_folderLabel->applyThemeClass(QStringLiteral("VStyleLabel"));
    m_folderLabel->setElideMode(Qt::ElideMiddle);
    m_folderLabel->setTextAutoElide(true);
    m_folderLabel->setMaximumWidth(int(VLiteStyle::dpiScaled(MaxLabelWidth)));
    m_folderLabel->setFixedHeight(int(VLiteStyle::dpiScaled(22)));
    m_folderLabel->setText(desktop);
    layout->addWidget(m_folderLabel);

    m_browseButton = new VLiteButton(this);
    m_browseButton->setObjectName(QStringLiteral("VMCustomDirBrowseButton"));
    m_browseButton->setFixedSize(VLiteStyle::dpiScaledSize(16, 16));
    m_browseButton->setIconSize(VLiteStyle::dpiScaledSize(16, 16));
    m_browseButton->setIcon(
        VDrawHelper::loadIcon(QStringLiteral("vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable;")));
    m_browseButton->setToolTip(tr("Select Path"));
    m_browseButton->setAccessibleName(m_browseButton->toolTip());
    layout->addWidget(m_browseButton);
    layout->addStretch();

    VMEnv::instance()->setCustomDir(desktop);
    fitLabelWidth();

    connect(m_browseButton, &VLiteButton::clicked, this, &VMCustomDirWidget::onBrowse);
}

void VMCustomDirWidget::onBrowse()
{
    QString dir = QDir::toNativeSeparators(QFileDialog::getExistingDirectory(
        this, tr("Select Path"), m_folderLabel->fullText(),
        QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks));
    if (dir.isEmpty())
        return;
    if (!dir.endsWith(QDir::separator()))
        dir += QDir::separator();
    m_folderLabel->setText(dir);
    VMEnv::instance()->setCustomDir(dir);
    fitLabelWidth();
}

// As wide as the whole path, up to the maximum; a longer path is elided in the middle.
void VMCustomDirWidget::fitLabelWidth()
{
    // The theme's style sheet sets the font only when the label is polished.
    m_folderLabel->ensurePolished();
    const int textWidth = m_folderLabel->textWidth();
    const int maximum = int(VLiteStyle::dpiScaled(MaxLabelWidth));
    m_folderLabel->setFixedWidth(maximum > textWidth ? textWidth : maximum);
}
