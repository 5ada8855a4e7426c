// A shape that keeps its text in a text frame of its own (a text box) ends the office when a
// document that holds one in a header or footer is inserted in the office's own format. Such a
// shape can hold its text itself, as any drawn shape does.
#pragma once

#include <com/sun/star/text/XTextDocument.hpp>

class ZylTextBoxes {
public:
    // Moves the text of each text box outside document's body, those in groups included, into its
    // shape, with the formatting of its characters and paragraphs. Returns how many it moved.
    static int unframeOutsideBody(const css::uno::Reference<css::text::XTextDocument> &document);
};
