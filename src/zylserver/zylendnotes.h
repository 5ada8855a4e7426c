// A document's endnotes print after the last page of the document they are in. Inserted into
// another, a source's endnotes would leave its own pages for the end of the merged document, and a
// range of only its endnote pages would keep nothing. Made text, they stay on the pages they print on.
#pragma once

#include <com/sun/star/frame/XModel.hpp>

class ZylEndnotes {
public:
    // Puts document's endnotes where they print, after its body on a page of the endnote page
    // style, each behind its number, and leaves each number at its anchor as text. Endnotes kept at
    // the ends of sections stay as they are. Returns whether any endnote was made text.
    static bool printInPlace(const css::uno::Reference<css::frame::XModel> &document);
};
