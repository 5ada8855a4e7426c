#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QLabel;
class QVBoxLayout;
class VLiteButton;
class VLiteLabel;

// The page shown while the file table is empty: a large add button with two lines of text
// under it. A left click on the button or anywhere on the texts asks for files.
class VDOCUMENTMERGER_EXPORT VMImportFileWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMImportFileWidget(QWidget *parent = nullptr);

    VLiteButton *addButton() const;

signals:
    void sigAddFile();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    VLiteButton *m_addButton = nullptr;
    VLiteLabel *m_firstLabel = nullptr;
    VLiteLabel *m_secondLabel = nullptr;
    QWidget *m_centerWidget = nullptr;
};
