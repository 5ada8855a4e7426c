// A field that shows a property of the document it is in (its title, subject, author or one of
// its own properties) shows the merged document's once it is inserted into another: the
// source's subject became empty. Fixed, it keeps showing what it showed in its source.
#pragma once

#include <com/sun/star/text/XTextDocument.hpp>

class ZylDocInfoFields {
public:
    // Fixes every such field of document that is not fixed yet at what it shows. Returns how many
    // it fixed.
    static int fix(const css::uno::Reference<css::text::XTextDocument> &document);
};
