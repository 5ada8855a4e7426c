// Rules that lay out a whole document, set once per document: font leading, spacing around
// tables, how text wraps around objects, tab stops. Each format brings its own, so a document
// laid out by the rules of another takes more or fewer lines per page. A merged document can keep
// only one set: that of the part that brings it the most pages (the first of equal parts), which
// a save in the office's own format writes with it.
#pragma once

#include <utility>
#include <vector>

#include <com/sun/star/uno/Any.hxx>
#include <com/sun/star/uno/XInterface.hpp>

class ZylLayoutRules {
public:
    // Empty when the document has no such settings.
    static ZylLayoutRules of(const css::uno::Reference<css::uno::XInterface> &document);

    bool isEmpty() const { return m_values.empty(); }
    // The rules of a part of pages pages that went into target, which had pagesBefore: they hold
    // from now on when no part had as many, target's own before anything went in included.
    void inserted(const ZylLayoutRules &part, int pages, const css::uno::Reference<css::uno::XInterface> &target,
                  int pagesBefore);
    // Sets them on document; the office reads them when it lays a document out on opening.
    void applyTo(const css::uno::Reference<css::uno::XInterface> &document) const;

private:
    std::vector<std::pair<rtl::OUString, css::uno::Any>> m_values;
    int m_pages = -1; // of the part they come from; -1 before any part went in
};
