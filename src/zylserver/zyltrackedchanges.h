// Carries a document's tracked changes through an insertion of its OpenDocument copy, which
// would drop them: the office applies every deletion and keeps every insertion as plain text.
// Before the copy is written, each change in its body is marked with a bookmark and its text made
// plain (deletions rejected, everything else accepted); once the copy is inserted, each marked
// range becomes the same change again and its bookmark goes. A source that hides its changes has
// them hidden in a target that has none of its own.
#pragma once

#include <vector>

#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <com/sun/star/util/DateTime.hpp>

class ZylTrackedChanges {
public:
    static bool hasChanges(const css::uno::Reference<css::frame::XModel> &document);

    // Marks the changes of document and makes its text plain. False when nothing was marked;
    // the document's changes are then left as they are.
    bool mark(const css::uno::Reference<css::uno::XComponentContext> &context,
              const css::uno::Reference<css::frame::XModel> &document);
    // Makes every marked range in target the change it was, and removes the marks.
    void restore(const css::uno::Reference<css::text::XTextDocument> &target) const;

private:
    struct Change {
        rtl::OUString bookmark;
        rtl::OUString type;
        rtl::OUString author;
        rtl::OUString comment;
        css::util::DateTime time;
    };
    std::vector<Change> m_changes;
    // The source showed its changes hidden: its deletions took no room on its pages.
    bool m_hidden = false;
    css::uno::Reference<css::uno::XComponentContext> m_context;
};
