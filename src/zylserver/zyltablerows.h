// A table row that runs over from one page onto the next cannot be cut where the page begins: a
// cut takes whole rows. Split in two where the page begins, each part keeps the text it shows on
// its page, and the page starts with a row of its own.
#pragma once

#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/text/XTextTable.hpp>

class ZylTableRows {
public:
    // Splits row (counted from 0) of table where page (of the layout) begins; false, and the
    // table unchanged, when no cell of the row runs onto that page or the row cannot be split.
    static bool splitAtPage(const css::uno::Reference<css::frame::XController> &controller,
                            const css::uno::Reference<css::text::XTextTable> &table, int row, int page);
};
