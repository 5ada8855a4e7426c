#pragma once

#include <QtGlobal>

#include "vdocumentmerger_export.h"

class QString;
class QWidget;

// Row orders of the file table's sort button: 0 order of addition, 1 file name ascending,
// 2 file name descending.
namespace VMFileTableSort {

// File names (QFileInfo::fileName) compared by UTF-16 code units, case-sensitive, so
// "10.doc" < "2.doc" and "B.doc" < "a.doc". Folders play no role.
VDOCUMENTMERGER_EXPORT bool fileNameLess(const QString &pathA, const QString &pathB);

// The row's "id" property; 0 when missing or not a number.
VDOCUMENTMERGER_EXPORT quint64 rowId(const QWidget *row);

// Whether a goes before b for the sort state. Widgets that are not rows are ordered by
// address, so a mixed list still sorts without reading anything from them.
VDOCUMENTMERGER_EXPORT bool rowLess(int sortState, const QWidget *a, const QWidget *b);

} // namespace VMFileTableSort
