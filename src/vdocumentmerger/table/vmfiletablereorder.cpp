#include "table/vmfiletablereorder.h"

#include <QtGlobal>

namespace VMFileTableReorder {

int dropIndex(const QVector<Entry> &entries, int indicatorIndex, int y)
{
    const int n = entries.size();
    if (n == 0)
        return -1;
    const int lastRow = indicatorIndex == n - 1 ? indicatorIndex - 1 : n - 1;
    int result = -1;
    for (int i = 0; i < n; ++i) {
        const Entry &entry = entries.at(i);
        if (!entry.usable)
            continue;
        result = i;
        if (y > entry.geometry.bottom())
            continue;
        if (i == lastRow && y > entry.geometry.center().y())
            result = i + 1;
        break;
    }
    if (indicatorIndex != -1 && result != -1 && indicatorIndex < result)
        --result;
    return result;
}

int reinsertIndex(int indicatorIndex, int entryCount, int rowIndex)
{
    if (indicatorIndex < 0 || indicatorIndex > entryCount || rowIndex == -1 || rowIndex == indicatorIndex)
        return -1;
    return indicatorIndex >= rowIndex ? indicatorIndex - 1 : indicatorIndex;
}

int autoScrollIndex(int y, int halfRowHeight, int areaBottom, int sourceIndex, int dropIndex, int entryCount)
{
    if (entryCount <= 0)
        return -1;
    int target;
    if (y <= halfRowHeight)
        target = dropIndex - 1;
    else if (y >= areaBottom - halfRowHeight)
        target = dropIndex + 2;
    else
        target = sourceIndex > dropIndex ? dropIndex - 1 : dropIndex + 1;
    return qBound(0, target, entryCount - 1);
}

} // namespace VMFileTableReorder
