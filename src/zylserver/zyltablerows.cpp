#include "zyltablerows.h"

#include <QString>

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/datatransfer/XTransferableSupplier.hpp>
#include <com/sun/star/table/XCell.hpp>
#include <com/sun/star/table/XTableRows.hpp>
#include <com/sun/star/text/XPageCursor.hpp>
#include <com/sun/star/text/XParagraphCursor.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextRangeCompare.hpp>
#include <com/sun/star/text/XTextViewCursorSupplier.hpp>
#include <com/sun/star/view/XLineCursor.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>
#include <com/sun/star/view/XViewCursor.hpp>

#include "zyllog.h"
#include "zylsplitparagraph.h"
#include "zyluno.h"

using namespace css;

namespace {

// Cell names count columns A-Z, then a-z.
rtl::OUString cellName(int column, int row)
{
    const QChar letter = column < 26 ? QChar('A' + column) : QChar('a' + column - 26);
    return toOUString(QString(letter) + QString::number(row + 1));
}

rtl::OUString nameOf(const uno::Reference<beans::XPropertySet> &cell)
{
    rtl::OUString name;
    if (cell.is())
        cell->getPropertyValue(ou("CellName")) >>= name;
    return name;
}

// Where the text of the cell named name first shows on page; null when it ends before.
uno::Reference<text::XTextRange> firstOnPage(const uno::Reference<text::XTextViewCursor> &view,
                                             const uno::Reference<text::XText> &cellText, const rtl::OUString &name,
                                             int page)
{
    uno::Reference<text::XPageCursor> pages(view, uno::UNO_QUERY_THROW);
    uno::Reference<view::XLineCursor> lines(view, uno::UNO_QUERY_THROW);
    uno::Reference<view::XViewCursor> moves(view, uno::UNO_QUERY_THROW);
    uno::Reference<beans::XPropertySet> where(view, uno::UNO_QUERY_THROW);
    const auto inCell = [&] {
        uno::Reference<beans::XPropertySet> cell;
        where->getPropertyValue(ou("Cell")) >>= cell;
        return nameOf(cell) == name;
    };
    view->gotoRange(cellText->getStart(), false);
    if (pages->getPage() >= page)
        return nullptr; // the whole cell is on the page
    // Line by line: the office tells the page of a line, not of a character.
    while (pages->getPage() < page) {
        if (!moves->goDown(1, false) || !inCell())
            return nullptr;
    }
    lines->gotoStartOfLine(false);
    return view->getStart();
}

uno::Reference<beans::XPropertySet> paragraphAt(const uno::Reference<text::XText> &text, bool last)
{
    uno::Reference<container::XEnumerationAccess> access(text, uno::UNO_QUERY_THROW);
    const uno::Reference<container::XEnumeration> items = access->createEnumeration();
    uno::Reference<beans::XPropertySet> found;
    while (items->hasMoreElements() && (last || !found.is()))
        items->nextElement() >>= found;
    return found;
}

// Moves the text of from that begins at split into the empty cell text to, formatting and all.
void moveText(const uno::Reference<frame::XController> &controller, const uno::Reference<text::XText> &from,
              const uno::Reference<text::XTextRange> &split, const uno::Reference<text::XText> &to)
{
    uno::Reference<view::XSelectionSupplier> selection(controller, uno::UNO_QUERY_THROW);
    uno::Reference<datatransfer::XTransferableSupplier> transfer(controller, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextCursor> moved = from->createTextCursorByRange(split);
    moved->gotoEnd(true);
    selection->select(uno::Any(uno::Reference<text::XTextRange>(moved, uno::UNO_QUERY_THROW)));
    const uno::Reference<datatransfer::XTransferable> copy = transfer->getTransferable();
    selection->select(uno::Any(to->getStart()));
    transfer->insertTransferable(copy);
    // A split where a paragraph begins takes the mark before it, so no empty paragraph stays.
    uno::Reference<text::XTextCursor> gone = from->createTextCursorByRange(split);
    uno::Reference<text::XParagraphCursor> paragraph(gone, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextRangeCompare> compare(from, uno::UNO_QUERY_THROW);
    const bool inParagraph = !paragraph->isStartOfParagraph();
    if (!inParagraph && compare->compareRegionStarts(from->getStart(), split) != 0)
        gone->goLeft(1, false);
    gone->gotoEnd(true);
    gone->setString(rtl::OUString());
    if (inParagraph) {
        ZylSplitParagraph::endAtBreak(paragraphAt(from, true));
        ZylSplitParagraph::continueAfterBreak(paragraphAt(to, false));
    }
}

} // namespace

bool ZylTableRows::splitAtPage(const uno::Reference<frame::XController> &controller,
                               const uno::Reference<text::XTextTable> &table, int row, int page)
{
    try {
        uno::Reference<text::XTextViewCursorSupplier> supplier(controller, uno::UNO_QUERY_THROW);
        const uno::Reference<text::XTextViewCursor> view = supplier->getViewCursor();
        // The parts of each cell that show on the page, found before the row changes.
        std::vector<std::pair<int, uno::Reference<text::XTextRange>>> splits;
        for (int column = 0; column < 52; ++column) {
            uno::Reference<text::XText> cell(table->getCellByName(cellName(column, row)), uno::UNO_QUERY);
            if (!cell.is())
                break;
            const uno::Reference<text::XTextRange> split = firstOnPage(view, cell, cellName(column, row), page);
            if (split.is())
                splits.emplace_back(column, split);
        }
        if (splits.empty())
            return false;
        // A new row after it takes the row's cells and their formatting; each part is as high as
        // its text, where the row's own height was that of both together.
        const uno::Reference<table::XTableRows> rows = table->getRows();
        rows->insertByIndex(row + 1, 1);
        for (int part : {row, row + 1}) {
            uno::Reference<beans::XPropertySet> height(rows->getByIndex(part), uno::UNO_QUERY);
            if (height.is())
                height->setPropertyValue(ou("IsAutoHeight"), uno::Any(true));
        }
        for (const auto &[column, split] : splits) {
            uno::Reference<text::XText> from(table->getCellByName(cellName(column, row)), uno::UNO_QUERY_THROW);
            uno::Reference<text::XText> to(table->getCellByName(cellName(column, row + 1)), uno::UNO_QUERY);
            if (!to.is()) {
                qCWarning(lcZylServer) << "a split row lacks the cell" << toQString(cellName(column, row + 1));
                continue;
            }
            moveText(controller, from, split, to);
        }
        return true;
    } catch (const uno::Exception &e) {
        qCWarning(lcZylServer) << "cannot split a table row where page" << page << "begins:" << toQString(e.Message);
        return false;
    }
}
