#include "table/vmimportfilewidget.h"

#include <QEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "host/liolite.h"

VMImportFileWidget::VMImportFileWidget(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);

    m_centerWidget = new QWidget(this);
    auto *center = new QVBoxLayout(m_centerWidget);
    center->setContentsMargins(0, 0, 0, 0);
    center->setSpacing(0);

    m_addButton = new VLiteButton(m_centerWidget);
    m_addButton->setFixedSize(VLiteStyle::dpiScaledSize(100, 100));
    m_addButton->setIconSize(VLiteStyle::dpiScaledSize(100, 100));
    m_addButton->setIcon(VDrawHelper::loadIcon(QStringLiteral("home_addfile;home_addfile_hover;home_addfile_click")));

    m_firstLabel = new VLiteLabel(m_centerWidget);
    m_firstLabel->setText(tr("Click add file or drag file here"));
    m_firstLabel->applyThemeClass(QStringLiteral("VMCommonText02_Label"));
    m_secondLabel = new VLiteLabel(m_centerWidget);
    m_secondLabel->setText(tr("Support ZYL DOC and docx formats"));
    m_secondLabel->applyThemeClass(QStringLiteral("VMStyleLabel"));
    // The button shows only an icon: its name is what the first line says.
    m_addButton->setAccessibleName(m_firstLabel->text());
    m_addButton->setToolTip(m_firstLabel->text());

    center->addWidget(m_addButton, 0, Qt::AlignHCenter);
    center->addSpacing(int(VLiteStyle::dpiScaled(20)));
    center->addWidget(m_firstLabel, 0, Qt::AlignHCenter);
    center->addSpacing(int(VLiteStyle::dpiScaled(4)));
    center->addWidget(m_secondLabel, 0, Qt::AlignHCenter);
    outer->addWidget(m_centerWidget, 0, Qt::AlignHCenter | Qt::AlignVCenter);

    connect(m_addButton, &VLiteButton::clicked, this, &VMImportFileWidget::sigAddFile);
    m_centerWidget->installEventFilter(this);
}

VLiteButton *VMImportFileWidget::addButton() const
{
    return m_addButton;
}

bool VMImportFileWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_centerWidget && event->type() == QEvent::MouseButtonRelease
        && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton)
        emit sigAddFile();
    return QWidget::eventFilter(watched, event);
}
