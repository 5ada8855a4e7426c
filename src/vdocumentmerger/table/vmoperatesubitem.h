#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class VLiteButton;

// Row buttons: open folder, open file, drag handle, remove.
class VDOCUMENTMERGER_EXPORT VMOperateSubItem : public QWidget {
    Q_OBJECT
public:
    explicit VMOperateSubItem(QWidget *parent = nullptr);

    VLiteButton *openDirButton() const;
    VLiteButton *openFileButton() const;
    VLiteButton *dragButton() const;
    VLiteButton *deleteButton() const;

signals:
    void sigOpenDir();
    void sigOpenFile();
    // A move over the drag handle with only the left button held.
    void sigDrag();
    void sigDelete();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    VLiteButton *m_openDirButton = nullptr;
    VLiteButton *m_openFileButton = nullptr;
    VLiteButton *m_dragButton = nullptr;
    VLiteButton *m_deleteButton = nullptr;
};
