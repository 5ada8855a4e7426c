#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

// Base of the add-on's message dialogs: a toolkit content dialog that re-applies the theme
// whenever the host switches skins while it exists.
class VDOCUMENTMERGER_EXPORT VMContentSkinDlg : public VLiteContentDlg {
    Q_OBJECT
public:
    VMContentSkinDlg(QWidget *parent, VLiteContentDlg::IconType iconType);

    // Runs a modal notice with one "Confirm" button (result 1), framed by the popup usage events
    // "show" and "click_well"/"click_close" when popupType is set. Returns the dialog's result.
    static int runNotice(QWidget *parent, VLiteContentDlg::IconType iconType, const QString &title,
                         const QString &content, const QString &popupType);

protected slots:
    void onSkinChanged();
};
