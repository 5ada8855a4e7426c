#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

// The bar under the file table: "Clear selected" with the counts, "Add file", and the
// number of selected files.
class VDOCUMENTMERGER_EXPORT VMFileTableStatusBar : public VLiteWidget {
    Q_OBJECT
public:
    explicit VMFileTableStatusBar(QWidget *parent = nullptr);

    void updateSelectedCount(int selected, int total);

signals:
    void sigAddFile();
    void sigClearList();

private:
    VLiteButton *m_addFileButton = nullptr;
    VLiteButton *m_clearSelectedButton = nullptr;
    VLiteLabel *m_countLabel = nullptr;
};
