#pragma once

#include <QList>
#include <QWidget>

#include "vdocumentmerger_export.h"

class QStringList;
class VMFifleTableContentItem;
class VMFileTableContentArea;
class VMFileTableHeader;

// The table of files: a header with select-all, invert and sort above the scrolling rows.
// Every row it adds starts checked and gets the dynamic property "id", its place in the
// order of addition. The table takes whatever it is given: limits and duplicates are the
// caller's business. GUI thread only.
class VDOCUMENTMERGER_EXPORT VMFileTableWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMFileTableWidget(QWidget *parent = nullptr);

    // Rows that one pass of the event loop may build without the window freezing: callers
    // adding more give the loop a turn after each such slice.
    static constexpr int RowsPerStep = 25;

    // The new row is owned by the table's content area.
    VMFifleTableContentItem *addFile(const QString &path);
    int itemCount() const;
    // Null for indexes out of range.
    VMFifleTableContentItem *itemAt(int index) const;
    // First row whose path denotes the same file (QFileInfo equality), else null.
    VMFifleTableContentItem *findItem(const QString &path) const;
    // Appends to out, in table order, the rows whose path is in paths (exact text).
    void itemsForPaths(const QStringList &paths, QList<VMFifleTableContentItem *> &out) const;
    void checkedItems(QList<VMFifleTableContentItem *> &out) const;
    int checkedCount() const;
    // Removes every checked row, then emits sigSlectedItemRemoved() once, even when none was.
    void removeSelected();
    // Brings the header's check box in line with the rows and emits sigSelectedItemCountChange().
    void updateHeaderCheckState();

    VMFileTableHeader *header() const;
    VMFileTableContentArea *contentArea() const;

signals:
    void sigItemCountChange(int);
    void sigItemAdded(VMFifleTableContentItem *fileListItem);
    void sigItemRemoved(VMFifleTableContentItem *fileListItem);
    void sigItemCkbStateChanged(VMFifleTableContentItem *fileListItem, int state);
    void sigItemsOrderChanged();
    void sigBatchCheckClicked();
    void sigItemCheckClicked(VMFifleTableContentItem *fileListItem, bool bChecked);
    void sigFilesAdded();
    void sigSlectedItemRemoved();
    void sigFileDel(VMFifleTableContentItem *fileListItem);
    void sigSelectedItemCountChange(int selected, int total);
    void sigItemReload(VMFifleTableContentItem *fileListItem);

public slots:
    void onHeaderSelectClicked(bool checked);
    void onInvertSelectionClicked();
    // 0 order of addition, 1 file name ascending, 2 descending.
    void onSortClicked(int state);
    // The row slots below read the row from sender() and ignore anything else.
    void onContentItemCkbClicked(bool checked);
    void onContentItemCkbStateChanged(int state);
    void onFileItemDel();
    void onListViewCountChange(int count);
    void onItemAdded(QWidget *item);
    void onItemRemoved(QWidget *item);
    void onItemReload();

private:
    void attachItem(VMFifleTableContentItem *item);
    QList<VMFifleTableContentItem *> rows() const;

    VMFileTableHeader *m_header = nullptr;
    VMFileTableContentArea *m_contentArea = nullptr;
    quint64 m_nextId = 0;
    bool m_newItemChecked = true;
};
