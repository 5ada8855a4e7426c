#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class VMCheckBox;
class VMElidedTextLabel;

// Check box and file name of a row. The name is elided in the middle; its tooltip is the
// absolute path, and the check box is named after the file for screen readers.
class VDOCUMENTMERGER_EXPORT VMFileNameSubItem : public QWidget {
    Q_OBJECT
public:
    explicit VMFileNameSubItem(QWidget *parent = nullptr);

    void setFilePath(const QString &path);
    QString filePath() const;
    VMCheckBox *checkBox() const;
    VMElidedTextLabel *nameLabel() const;

signals:
    void sigCkbClicked(bool);
    void sigCkbStateChanged(int state);

private:
    QString m_filePath;
    VMCheckBox *m_checkBox = nullptr;
    VMElidedTextLabel *m_nameLabel = nullptr;
};
