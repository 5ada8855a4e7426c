#include "shell/vmcontentskindlg.h"

#include <QCoreApplication>

#include "shell/cappcontroller.h"
#include "shell/usageevents.h"

VMContentSkinDlg::VMContentSkinDlg(QWidget *parent, VLiteContentDlg::IconType iconType)
    : VLiteContentDlg(parent, iconType)
{
    if (CAppController *controller = CAppController::instance())
        connect(controller, &CAppController::sigSkinChanged, this, &VMContentSkinDlg::onSkinChanged);
}

void VMContentSkinDlg::onSkinChanged()
{
    changeStyle();
}

int VMContentSkinDlg::runNotice(QWidget *parent, VLiteContentDlg::IconType iconType, const QString &title,
                                const QString &content, const QString &popupType)
{
    VMContentSkinDlg dialog(parent, iconType);
    dialog.setTitle(title);
    dialog.setContent(content);
    dialog.setButtonText(VLiteContentDlg::BtnConfirm, QCoreApplication::translate("general", "Confirm"));
    dialog.setButtonResult(VLiteContentDlg::BtnConfirm, 1);
    dialog.setButtonVisible(VLiteContentDlg::BtnCancel, false);
    dialog.setButtonVisible(VLiteContentDlg::BtnThird, false);
    dialog.setTitleHitTest(true);
    if (!popupType.isEmpty())
        sendPopupEvent(popupType, QStringLiteral("show"));
    const int result = dialog.exec();
    if (!popupType.isEmpty())
        sendPopupEvent(popupType, result == 1 ? QStringLiteral("click_well") : QStringLiteral("click_close"));
    return result;
}
