#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class VLiteClickableLabel;
class VLiteLabel;
class VMCheckBox;
class VMSortStateButton;
class VSeparatorLine;

// The file-name column of the table header: select-all check box, "File name", the sort
// button and, while the check box is partly checked, the "Invert Selection" link.
class VDOCUMENTMERGER_EXPORT VMTableHeaderNameItem : public QWidget {
    Q_OBJECT
public:
    explicit VMTableHeaderNameItem(QWidget *parent = nullptr);

    VMCheckBox *checkBox() const;
    VMSortStateButton *sortButton() const;
    VLiteClickableLabel *invertSelectionLink() const;

public slots:
    void onCkbStateChange(int state);

private:
    VMCheckBox *m_checkBox = nullptr;
    VLiteLabel *m_nameLabel = nullptr;
    VMSortStateButton *m_sortButton = nullptr;
    VSeparatorLine *m_separator = nullptr;
    VLiteClickableLabel *m_invertSelection = nullptr;
};
