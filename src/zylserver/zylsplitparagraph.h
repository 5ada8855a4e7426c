// A paragraph that a page break divides is laid out as one: spacing above it on its first page
// only, spacing below on its last, its first-line indent and number on its first line, and a
// justified paragraph's lines all justified but the very last. Where a cut or a split keeps one
// part of such a paragraph, that part keeps the look it had on its page.
#pragma once

#include <com/sun/star/beans/XPropertySet.hpp>

class ZylSplitParagraph {
public:
    // The part before the break.
    static void endAtBreak(const css::uno::Reference<css::beans::XPropertySet> &paragraph);
    // The part after the break.
    static void continueAfterBreak(const css::uno::Reference<css::beans::XPropertySet> &paragraph);
};
