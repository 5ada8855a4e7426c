#include "output/vmclouddirwidget.h"

#include <QHBoxLayout>

#include "cloud/vmcloudhelper.h"
#include "host/liolite.h"
#include "shell/hostservices.h"
#include "shell/vmcontentskindlg.h"

VMCloudDirWidget::VMCloudDirWidget(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(int(VLiteStyle::dpiScaled(6)));

    m_textLabel = new VLiteLabel(VMCloudHelper::cloudPathDisplayText(), this);
    // The same look as the custom folder's path on the page beside it.
    m_textLabel->applyThemeClass(QStringLiteral("VStyleLabel"));
    layout->addWidget(m_textLabel);

    m_openButton = new VLiteButton(QObject::tr("open folder"), this);
    m_openButton->setCursor(Qt::PointingHandCursor);
    QFont font = m_openButton->font();
    font.setUnderline(true);
    m_openButton->setFont(font);
    m_openButton->applyThemeClass(QStringLiteral("VMButton_OpenCloudDir"));
    m_openButton->setAccessibleName(m_openButton->text());
    layout->addWidget(m_openButton);
    layout->addStretch();

    connect(m_openButton, &VLiteButton::clicked, this, &VMCloudDirWidget::onOpenCloudDir);
}

void VMCloudDirWidget::onOpenCloudDir()
{
    if (isLoggedIn()) {
        VMCloudHelper::instance()->openVirtualCloudDisk(VMCloudHelper::cloudFolderPath(), true);
        return;
    }
    VMContentSkinDlg dlg(this, 0);
    dlg.setTitle(QObject::tr("Tips"));
    dlg.setButtonText(VLiteContentDlg::BtnConfirm, QObject::tr("Confirm"));
    dlg.setButtonResult(VLiteContentDlg::BtnConfirm, 1);
    dlg.setButtonVisible(VLiteContentDlg::BtnCancel, false);
    dlg.setButtonVisible(VLiteContentDlg::BtnThird, false);
    dlg.setContent(tr("Sorry! You need to login in order to use %1.")
                       .arg(yrt::product::getZYLDriveDisplayName()));
    dlg.setTitleHitTest(true);
    if (dlg.exec() == 1)
        requestLogin();
}
