#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

// Base of the add-on's message dialogs: a toolkit content dialog that re-applies the theme
// whenever the host switches skins while it exists.
class VDOCUMENTMERGER_EXPORT VMContentSkinDlg : public VLiteContentDlg {
    Q_OBJECT
public:
    VMContentSkinDlg(QWidget *parent, VLiteContentDlg::IconType iconType);

protected slots:
    void onSkinChanged();
};
