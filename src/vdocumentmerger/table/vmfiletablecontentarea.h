#pragma once

#include <functional>

#include <QScrollArea>

#include "vdocumentmerger_export.h"

class QMimeData;
class VMFileTableContentView;
class VMFileTableScrollBarMask;

// The scrolling list of rows under the table header. Rows are reordered by dragging them
// inside the list; a drop indicator shows where the dragged row will land and is never
// counted as a row. GUI thread only.
//
// The drag is split so that each step can run without a real drag: dropIndexAt() finds the
// landing place for a point, moveDropIndicator() shows the indicator there, and
// dropRowAtIndicator() moves the row once the drag ends.
class VDOCUMENTMERGER_EXPORT VMFileTableContentArea : public QScrollArea {
    Q_OBJECT
public:
    // Format of the in-process row drag; its bytes are the row's address in decimal.
    static const char *const ItemMimeType;

    explicit VMFileTableContentArea(QWidget *parent = nullptr);

    // Appends the row, which becomes a child of the view. Emits sigItemAdded() then
    // sigCountChange() when the count changed.
    void addItem(QWidget *row);
    // Takes a row of this list out and deletes it later, so receivers of sigItemRemoved()
    // and sigCountChange() can still read it. Anything that is not a row here is left alone.
    void removeItem(QWidget *row);
    int itemCount() const;
    // Null for indexes out of range; never the drop indicator.
    QWidget *itemAt(int index) const;
    // Every row in order, in one pass: cheaper than itemAt() in a loop.
    QList<QWidget *> items() const;
    // Unstable sort; the drop indicator is taken away first.
    void sortItems(const std::function<bool(QWidget *, QWidget *)> &lessThan);

    // The row of this list that a drag payload names, or null for anything else (another
    // list's or another process's payload).
    QWidget *rowForPayload(const QMimeData *data) const;
    // Row index at which a row dropped at point (area coordinates) lands, or -1.
    int dropIndexAt(const QPoint &point) const;
    // Layout index of the drop indicator, -1 when it is not shown.
    int dropIndicatorIndex() const;
    // Shows the indicator before row index rowIndex (after the last row for itemCount()).
    void moveDropIndicator(int rowIndex);
    // Ends a drag: takes the indicator away and puts row where it stood. Returns whether the
    // row was reinserted (also at its own place when dropped right below itself), in which
    // case sigItemsOrderChanged() was emitted.
    bool dropRowAtIndicator(QWidget *row);

signals:
    void sigViewportResized(QSize);
    void sigCountChange(int count);
    void sigItemAdded(QWidget *newItem);
    void sigItemRemoved(QWidget *removeItem);
    void sigItemsOrderChanged();

public slots:
    // Drags the sender, a row of this list.
    void startDrag();
    void onResetStyleSheet();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;

private:
    void takeDropIndicator();
    // Tab runs from the list through the rows in their shown order, not in the order they were made.
    static QList<QWidget *> tabStops(QWidget *row);
    static QWidget *chainTabOrder(QWidget *previous, QWidget *row);
    void chainTabOrderOfAllRows();
    void scheduleViewAdjust();
    void scrollWhileDragging(QWidget *row, int sourceIndex, int dropIndex, int y);

    VMFileTableContentView *m_view = nullptr;
    VMFileTableScrollBarMask *m_scrollBarMask = nullptr;
    QWidget *m_dropIndicator = nullptr;
    bool m_viewAdjustPending = false;
};
