#include "shell/vmcontentskindlg.h"

#include "shell/cappcontroller.h"

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
