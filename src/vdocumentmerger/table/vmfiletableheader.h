#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class VMTableHeaderNameItem;

// The header row of the file table: the name column with select-all, sort and invert, then
// the labels of the page-count, range and operation columns, aligned with the rows' columns.
class VDOCUMENTMERGER_EXPORT VMFileTableHeader : public QWidget {
    Q_OBJECT
public:
    explicit VMFileTableHeader(QWidget *parent = nullptr);

    // Partly checked also makes the check box tri-state.
    void setCheckState(Qt::CheckState state);
    Qt::CheckState checkState() const;
    void setTristate(bool tristate);
    VMTableHeaderNameItem *nameItem() const;

signals:
    void sigSelectCkbClicked(bool);
    void sigInvertSelectionClicked();
    void sigSortButtonClicked(int);

private:
    VMTableHeaderNameItem *m_nameItem = nullptr;
};
