// Character positions in a text document's body, shared by "GoTo", "Range", "Start", "End" and
// the editing members.
//
// The body is a row of paragraphs and tables. A paragraph takes its characters plus one for its
// end mark; a table takes one per row. Position p stands just before the (p-1)-th of these;
// position 0 stands before a virtual paragraph mark ahead of the whole body, so the last body
// position is the body's length plus one.
//
// A page that begins at a paragraph start after another paragraph begins, in positions, at the
// end mark that closes the page before. Deleting from one such page start to another then removes
// the end mark before the first page and keeps the one that closes the last deleted page: the
// paragraph after the cut keeps its own page style and break, and a cut to the end leaves no empty
// page behind. A page that begins with a table, or right after one, begins at that element; a
// cut with such an end removes whole paragraphs and tables instead. A page that begins inside a
// table begins at the first row that starts on it, so a cut through a table removes the rows on
// the removed pages and keeps the others with their heading rows.
#pragma once

#include <vector>

#include <QString>

#include <com/sun/star/style/BreakType.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextContent.hpp>
#include <com/sun/star/text/XTextCursor.hpp>
#include <com/sun/star/text/XTextDocument.hpp>

#include <vcomrt/com.h>

class ZylTextModel {
public:
    explicit ZylTextModel(const css::uno::Reference<css::text::XTextDocument> &document);

    // Pages as the office prints them now: the blank pages it adds to give a page the parity its
    // number or style asks for are left out, as they are in its own PDF export.
    int pageCount();
    // Position where the page begins; E_INVALIDARG when there is no such page.
    HRESULT pageStart(int page, LONG *position);
    LONG endPosition();

    HRESULT deleteRange(LONG start, LONG end);
    // One undo step: a paragraph break whose new paragraph starts on a new page.
    HRESULT insertPageBreak(LONG position);
    HRESULT insertParagraph(LONG position);
    // Inserts the document at url; E_FAIL when nothing arrived. A non-empty firstPageStyle starts
    // the inserted content on a page of that style when it begins a paragraph, and says that the
    // document was read already, so that nothing arriving means an empty document.
    HRESULT insertFile(LONG position, const QString &url, const rtl::OUString &firstPageStyle = rtl::OUString());

private:
    struct Element {
        bool isTable = false;
        int base = 0;   // offset of its first character in the body
        int length = 0; // characters, without the end mark; a table's rows less one
        int rows = 0;   // a table's rows
        css::uno::Reference<css::text::XTextContent> content;
    };
    struct Layout {
        std::vector<Element> elements;
        int length = 0; // real points run from 0 to length
    };
    struct BreakState {
        bool valid = false;
        rtl::OUString pageDesc;
        css::style::BreakType breakType = css::style::BreakType_NONE;
        rtl::OUString layoutStyle; // page style the element is laid out with
    };

    // Layout page numbers of the pages that are printed, in order.
    std::vector<int> printedPages();
    Layout layout();
    // Index of the element that holds real point `point` (a paragraph from its start to its end
    // mark, or a table's slot); -1 beyond the body.
    static int elementAt(const Layout &l, int point);
    // Real offset of a point in the body text; -1 when it lies elsewhere.
    int offsetOf(const Layout &l, const css::uno::Reference<css::text::XTextRange> &point, int *element);
    // A collapsed cursor at a real point inside a paragraph; null for a table slot.
    css::uno::Reference<css::text::XTextCursor> cursorAt(const Layout &l, int point);
    // Deletes from one point in paragraph text to another; followerIndex names the element that
    // begins right after the cut, or -1.
    void deleteText(const Layout &l, int rs, int re, bool fromVirtualMark, int followerIndex);
    // Pictures, shapes, frames and embedded objects anchored anywhere in the document.
    int drawnObjects();
    // Removes the empty paragraph an insertion at `point` left ahead of the inserted content.
    void joinEmptyInsertionParagraph(const Layout &before, int point);
    // Shows again the empty last paragraph that a cut to the end hid after a table, when point
    // lies in it; true when it did.
    bool revealHiddenEnd(const Layout &l, int point);
    // Rows a table repeats at the top of each page it runs on to.
    static int headingRows(const Element &e);
    // Removes rows from..to-1 of a table.
    static void removeRows(const Element &e, int from, int to);
    // The page style the element is laid out with now.
    rtl::OUString layoutStyleOf(const Element &e);
    BreakState breakStateOf(const Element &e);
    void restoreBreak(const Element &e, const BreakState &before);
    int measure(const css::uno::Reference<css::text::XTextRange> &from,
                const css::uno::Reference<css::text::XTextRange> &to);

    css::uno::Reference<css::text::XTextDocument> m_document;
    css::uno::Reference<css::text::XText> m_text;
};
