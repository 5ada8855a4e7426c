// A shape that keeps its text in a text frame of its own (a text box) ends the office when a
// document that holds one in a header or footer is inserted in the office's own format. A frame
// on its own, where the box's text lies, shows the same and goes in.
#pragma once

#include <com/sun/star/text/XTextDocument.hpp>

class ZylTextBoxes {
public:
    // Gives the text of each text box outside document's body, those in groups included, a frame
    // of its own where it lies, with its formatting and fields, and leaves the shape without text.
    // Returns how many it separated.
    static int separateOutsideBody(const css::uno::Reference<css::text::XTextDocument> &document);
};
