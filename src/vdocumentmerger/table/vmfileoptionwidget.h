#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

class QHBoxLayout;
class QStackedLayout;
class VMFileListPage;
class VMImportFileWidget;

// The file area: the import page while the table is empty, the merge page once it has a row.
// Files dropped anywhere over it go to the merge page when their suffix is supported; an
// unsupported entry is reported once per drop.
class VDOCUMENTMERGER_EXPORT VMFileOptionWidget : public VLiteWidget {
    Q_OBJECT
public:
    explicit VMFileOptionWidget(QWidget *parent = nullptr);

    VMImportFileWidget *importPage() const;
    VMFileListPage *fileListPage() const;

signals:
    void sigSelectedItemCountChange(int selected, int total);

public slots:
    void onAddFile();
    void onStartMerger();
    void onItemCountChange(int count);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void showUnsupportedFormatDialog();

    QHBoxLayout *m_layout = nullptr;
    QStackedLayout *m_stackedLayout = nullptr;
    VMImportFileWidget *m_importPage = nullptr;
    VMFileListPage *m_fileListPage = nullptr;
};
