#include "table/vmfiletablesort.h"

#include <QFileInfo>
#include <QVariant>

#include "table/vmfifletablecontentitem.h"

namespace VMFileTableSort {

bool fileNameLess(const QString &pathA, const QString &pathB)
{
    return QFileInfo(pathA).fileName() < QFileInfo(pathB).fileName();
}

quint64 rowId(const QWidget *row)
{
    bool ok = false;
    const quint64 id = row->property("id").toULongLong(&ok);
    return ok ? id : 0;
}

bool rowLess(int sortState, const QWidget *a, const QWidget *b)
{
    const auto *rowA = qobject_cast<const VMFifleTableContentItem *>(a);
    const auto *rowB = qobject_cast<const VMFifleTableContentItem *>(b);
    if (!rowA || !rowB)
        return a < b;
    switch (sortState) {
    case 1:
        return fileNameLess(rowA->filePath(), rowB->filePath());
    case 2:
        return fileNameLess(rowB->filePath(), rowA->filePath());
    default:
        return rowId(rowA) < rowId(rowB);
    }
}

} // namespace VMFileTableSort
