// Brings an inserted document's page layout along. Inserting a document keeps the target's page
// styles wherever names clash, and the inserted text then flows in the target's default page
// style. A prepared copy of the document uses page styles under names the target does not have,
// and its first paragraph names its first page's style, so its pages lay out as in the source.
// Paragraph styles whose names the target has too come along the same way.
#pragma once

#include <QString>

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/frame/XDesktop2.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/style/BreakType.hpp>
#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include "zyllayoutrules.h"
#include "zyltrackedchanges.h"

class ZylPageStyleImport {
public:
    // Writes the prepared copy of the document at path into folder, unless the target has its
    // styles as they are: then the document itself is to be inserted, naming its first page style.
    // Returns false, and leaves nothing in folder, when the document cannot be prepared; the caller
    // then inserts it as it is. A document already loaded from path may be given as loaded;
    // it is closed when done, like the one loaded here otherwise.
    bool prepare(const css::uno::Reference<css::uno::XComponentContext> &context,
                 const css::uno::Reference<css::frame::XDesktop2> &desktop,
                 const css::uno::Reference<css::text::XTextDocument> &target, const QString &path,
                 const QString &folder,
                 const css::uno::Reference<css::frame::XModel> &loaded = css::uno::Reference<css::frame::XModel>());

    QString preparedUrl() const { return m_url; }
    // The document's own, read whether or not a copy was written.
    const ZylLayoutRules &layoutRules() const { return m_rules; }
    // Empty when no copy was written.
    QString preparedPath() const { return m_path; }
    // The page style the inserted content starts with, as named in the target after insertion.
    rtl::OUString firstPageStyle() const { return m_firstStyle; }
    // The page style that lays out a page which continues a run of pages in style name, in a
    // document whose earlier pages are gone: name itself, unless its first page differs from the
    // others (a title page's header); then a copy whose first page looks like the others, made once.
    static rtl::OUString continuedStyle(const css::uno::Reference<css::text::XTextDocument> &document,
                                        const rtl::OUString &name);
    // Whether pages in style name look different on the left and on the right, so that their
    // numbers decide their look.
    static bool hasSides(const css::uno::Reference<css::text::XTextDocument> &document, const rtl::OUString &name);
    // The page number the inserted content starts with, as in its source, where it decides how
    // the page looks; 0 otherwise.
    sal_Int16 firstPageNumber() const { return m_firstNumber; }
    // Whether the inserted content starts with a table.
    bool startsWithTable() const { return m_startsWithTable; }
    // Whether it ends in a hidden empty paragraph, as a cut leaves after a table that fills its page.
    bool endsHidden() const { return m_endsHidden; }
    // What the inserted content's first and last paragraphs have, where the insertion loses it:
    // an OpenDocument file's first paragraph joins the one inserted into and keeps that one's
    // list; its last takes the style of the paragraph before it, without its break or list. The
    // style is empty otherwise.
    struct EdgeParagraph {
        rtl::OUString style;
        css::style::BreakType breakType = css::style::BreakType_NONE;
        rtl::OUString pageStyle;
        bool sharesList = false; // with the content's paragraph next to it
        rtl::OUString list; // the list style numbering it
        sal_Int16 level = 0;
        bool empty = false; // a last paragraph, after others, that holds no text
    };
    EdgeParagraph firstParagraph() const { return m_first; }
    EdgeParagraph lastParagraph() const { return m_last; }
    // Sets the paragraph's style and keeps the values the paragraph sets itself.
    static void setParagraphStyle(const css::uno::Reference<css::beans::XPropertySet> &paragraph,
                                  const rtl::OUString &style);
    // After the prepared copy was inserted into target: its tracked changes as in the source.
    void restoreChanges(const css::uno::Reference<css::text::XTextDocument> &target) const { m_changes.restore(target); }

private:
    static bool dropSpacingAtPageTops(const css::uno::Reference<css::frame::XModel> &model,
                                      const css::uno::Reference<css::text::XTextDocument> &source,
                                      const css::uno::Reference<css::text::XTextDocument> &target);

    QString m_url;
    QString m_path;
    rtl::OUString m_firstStyle;
    sal_Int16 m_firstNumber = 0;
    bool m_startsWithTable = false;
    bool m_endsHidden = false;
    EdgeParagraph m_first;
    EdgeParagraph m_last;
    ZylTrackedChanges m_changes;
    ZylLayoutRules m_rules;
};
