#pragma once

#include <QRect>
#include <QVector>

#include "vdocumentmerger_export.h"

// Index arithmetic of dragging a row to a new place in the content area. "Layout index"
// counts every entry of the view's layout, the drop indicator included; "row index" counts
// rows only.
namespace VMFileTableReorder {

// One layout entry: its geometry in the view, and whether it takes part (it holds a widget
// and lies inside the view's contents rectangle).
struct Entry {
    QRect geometry;
    bool usable = true;
};

// Row index at which a row dropped at height y (view coordinates) lands, or -1 for no
// entries. The drop goes before the first entry whose bottom is at or below y, and after the
// last row when y is in its lower half. indicatorIndex is -1 when the indicator is absent.
VDOCUMENTMERGER_EXPORT int dropIndex(const QVector<Entry> &entries, int indicatorIndex, int y);

// Where a dragged row is reinserted once the drag ends: indicatorIndex is the indicator's
// layout index before it was taken out, entryCount and rowIndex are counted after that.
// Returns the layout index to insert the row at after taking it out, or -1 when nothing moves.
VDOCUMENTMERGER_EXPORT int reinsertIndex(int indicatorIndex, int entryCount, int rowIndex);

// Layout index of the entry to scroll into view while dragging at height y (area
// coordinates): near the top edge the one above the drop position, near the bottom edge the
// one two below, else its neighbour on the side the row comes from. -1 without entries.
VDOCUMENTMERGER_EXPORT int autoScrollIndex(int y, int halfRowHeight, int areaBottom, int sourceIndex,
                                           int dropIndex, int entryCount);

} // namespace VMFileTableReorder
