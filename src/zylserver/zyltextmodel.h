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
//
// One model lives as long as its document is open. What it reads from the office (elements and
// their positions, printed pages, page starts) is kept between calls and belongs to a generation:
// each edit made here moves the generation on and marks where the document changed, so the next
// read takes up only the elements and pages from there on; a change anyone else makes (the
// office tells its undo manager's listeners), an undo among them, drops everything.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QString>

#include <com/sun/star/style/BreakType.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextContent.hpp>
#include <com/sun/star/text/XTextCursor.hpp>
#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/document/XUndoManagerListener.hpp>

#include <vcomrt/com.h>

#include "zyllayoutrules.h"
#include "zylpagestyleimport.h"

class ZylReferences;

class ZylTextModel {
public:
    explicit ZylTextModel(const css::uno::Reference<css::text::XTextDocument> &document);
    ~ZylTextModel();

    ZylTextModel(const ZylTextModel &) = delete;
    ZylTextModel &operator=(const ZylTextModel &) = delete;

    // Listening to the office starts and ends here; both must run inside an office call.
    void attach();
    void detach();

    // Forgets everything read so far, for changes the model cannot follow (an undo).
    void invalidate();
    // Moves on with every change to the document, whoever made it.
    unsigned long generation();

    // Pages as the office prints them now: the blank pages it adds to give a page the parity its
    // number or style asks for are left out, as they are in its own PDF export.
    int pageCount();
    // Before a .doc save. That export writes an empty paragraph whose font its style gives with
    // the font of the empty paragraph before it: each one's font is set on it, as it shows. And it
    // takes the page style a table starts from the table's first paragraph, not from the table.
    void prepareLegacyWordSave();
    // Position where the page begins; E_INVALIDARG when there is no such page.
    HRESULT pageStart(int page, LONG *position);
    LONG endPosition();

    HRESULT deleteRange(LONG start, LONG end);
    // One undo step: a paragraph break whose new paragraph starts on a new page.
    HRESULT insertPageBreak(LONG position);
    HRESULT insertParagraph(LONG position);
    // What is known of a document before it is inserted. A non-empty firstPageStyle starts the
    // content on a page of that style when it begins a paragraph, and says that the document was
    // read already, so that nothing arriving means an empty document; a firstNumber above 0 numbers
    // that page so. Content that startsWithTable starts the page with that table where it can;
    // content that endsHidden ends in a hidden empty paragraph after a table, which stays hidden.
    struct Insertion {
        rtl::OUString firstPageStyle;
        sal_Int16 firstNumber = 0;
        bool startsWithTable = false;
        bool endsHidden = false;
        // What its first and last paragraphs must have, where the insertion loses it.
        ZylPageStyleImport::EdgeParagraph first;
        ZylPageStyleImport::EdgeParagraph last;
    };
    // Whose layout rules the document keeps when saved.
    ZylLayoutRules &layoutRules() { return m_layoutRules; }
    // Inserts the document at url; E_FAIL when nothing arrived.
    HRESULT insertFile(LONG position, const QString &url, const Insertion &known);
    HRESULT insertFile(LONG position, const QString &url) { return insertFile(position, url, Insertion()); }

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

    // How one end of a cut meets the body.
    enum class CutEnd {
        Mark,     // on a paragraph's end mark (the cut starts by joining, or keeps that mark)
        Boundary, // where a paragraph or table begins, or inside a table (the table stays)
        Text,     // inside a paragraph's text
        BodyEnd   // at the end of the body
    };
    // A cut of the body in real points rs..re, and what it does to the elements it meets.
    struct Cut {
        int rs = 0;
        int re = 0;
        bool fromVirtualMark = false;
        CutEnd start = CutEnd::Text;
        CutEnd end = CutEnd::Text;
        int startIndex = 0;
        int endIndex = 0;
        int firstWhole = 0; // elements firstWhole..lastWhole go completely
        int lastWhole = 0;
        int rowsFrom = -1; // the cut begins at this row of the start table
        int rowsTo = -1;   // the cut ends before this row of the end table
    };

    struct Changes;
    class ChangeListener;
    class OwnEdit;

    // Layout page numbers of the pages that are printed, in order.
    const std::vector<int> &printedPages();
    const Layout &layout();
    HRESULT findPageStart(int page, LONG *position, bool maySplit = true);
    void keepPagesBefore(const Layout &l, LONG start);
    // Drops what is cached when someone else changed the document.
    void sync();
    // Records, right before an edit, that elements first..last of the current layout are about to
    // change; elements before first and after last + 1 stay as they are.
    void touch(int first, int last);
    static Element readElement(const css::uno::Any &item);
    // Sets the bases of the elements from `from` on, and the body's length.
    static void place(Layout &l, size_t from);
    void readAll();
    // Reads the elements again from `from` on, after the paragraph before it; false when it
    // cannot, and nothing is changed.
    bool readFrom(int from, int lastTouched);
    void splitPictureParagraphsAtPages();
    static void carryPageStyleIntoTable(const css::uno::Reference<css::text::XTextContent> &table);
    // Layout page where the element ends; 0 when the view cannot tell.
    int pageOfEnd(const Element &e);
    // Index of the element that holds real point `point` (a paragraph from its start to its end
    // mark, or a table's slot); -1 beyond the body.
    static int elementAt(const Layout &l, int point);
    // Real offset of a point in the body text; -1 when it lies elsewhere.
    int offsetOf(const Layout &l, const css::uno::Reference<css::text::XTextRange> &point, int *element);
    // A collapsed cursor at a real point inside a paragraph; null for a table slot. Pictures
    // anchored as characters take no points: at a paragraph's first point, the cursor stands
    // before them when elementStart is set, and after them where that point is also the end.
    css::uno::Reference<css::text::XTextCursor> cursorAt(const Layout &l, int point, bool elementStart = false);
    // The steps of deleteRange(): where the cut starts and ends (false when it cannot be placed),
    // the ends moved to whole elements where one end would join paragraphs, the partial ends cut,
    // the table rows it goes through removed, and what stays after it settled.
    bool placeCutStart(const Layout &l, Cut &cut);
    bool placeCutEnd(const Layout &l, Cut &cut);
    static void balanceCutEnds(const Layout &l, Cut &cut);
    void cutPartialEnds(const Layout &l, const Cut &cut);
    static void cutTableRows(const Layout &l, const Cut &cut);
    // About how many nodes e holds, which a cut moves into the undo steps.
    static int nodesOf(const Element &e);
    // Removes the elements first to last, each whole, telling willRemove before each goes how
    // many nodes it holds.
    static void removeWhole(const Layout &l, int first, int last, const std::function<void(int)> &willRemove);
    // Cross-references whose target went with a cut become the text they showed.
    void keepOrphanedTexts(const ZylReferences &references);
    // The first item of each list that goes on after a cut, with its number as it prints before
    // the cut; keepListNumbers() gives each item whose number the cut changed that number again.
    struct ListNumber {
        css::uno::Reference<css::beans::XPropertySet> paragraph;
        rtl::OUString label;
        sal_Int32 value = 0;
    };
    std::vector<ListNumber> listNumbersAfter(const Layout &l, int firstKept);
    static void keepListNumbers(const std::vector<ListNumber> &numbers);
    // The number the page where e begins is printed with; 0 when the office cannot tell.
    int printedNumberAt(const Element &e);
    // The parts of paragraphs that a cut divided where a page begins keep their look on that page;
    // so does the paragraph that begins the body after a cut from its start, kept as it was before.
    void keepDividedLooks(const Cut &cut, const BreakState &kept);
    // Whether paragraphs take their spacing above them at the top of a page the text ran over to.
    bool spacingAtPageTops();
    // After a cut from the body's start, e starts the body: its page keeps the number given (0:
    // none) and, where it went on in a run of pages, the look of a page that does not start the run.
    void keepFirstPage(const Element &e, const BreakState &before, int number);
    void settleAfterCut(const Layout &l, const Cut &cut, int followerIndex, const BreakState &follower);
    // Deletes from one point in paragraph text to another; followerIndex names the element that
    // begins right after the cut, or -1.
    void deleteText(const Layout &l, int rs, int re, bool fromVirtualMark, int followerIndex);
    // An empty paragraph that a page break starts begins a run of its page style instead.
    void startRunAtBreak(const Element &e);
    // Gives the inserted content's last paragraph, at index, the break it lost.
    static void restoreLastBreak(const Layout &l, int index, const ZylPageStyleImport::EdgeParagraph &known);
    // Puts the paragraph at index, whose list arrived under another name or not at all, into the
    // list of the one at neighbour, or of its own style, as in the source.
    void joinNeighbourList(const Layout &l, int index, int neighbour, const ZylPageStyleImport::EdgeParagraph &known);
    static bool numbered(const css::uno::Reference<css::beans::XPropertySet> &paragraph);
    bool hasListStyle(const rtl::OUString &name) const;
    // Pictures, shapes, frames and embedded objects anchored anywhere in the document.
    int drawnObjects();
    // Removes the empty paragraph at index that an insertion left ahead of inserted content that
    // starts with a table, or hides it behind another table. Sets *tableIndex to the element that
    // now starts the content; returns whether that table starts a page of the same style as the
    // page before.
    bool dropParagraphBeforeTable(int index, const rtl::OUString &pageStyle, int *tableIndex);
    void joinEmptyInsertionParagraph(const Layout &before, int point, bool openDocument);
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
    // Whether two elements, read at different times, are the same one: the office may hand out
    // different objects for one paragraph.
    bool sameElement(const Element &a, const Element &b);
    int measure(const css::uno::Reference<css::text::XTextRange> &from,
                const css::uno::Reference<css::text::XTextRange> &to);

    // A document's endnotes are made text where they print before its first edit.
    void placeEndnotes();

    css::uno::Reference<css::text::XTextDocument> m_document;
    css::uno::Reference<css::text::XText> m_text;
    bool m_endnotesPlaced = false;
    std::shared_ptr<Changes> m_changes;
    css::uno::Reference<css::document::XUndoManagerListener> m_listener;
    unsigned m_seenForeign = 0;
    unsigned long m_generation = 0;

    Layout m_layout;
    bool m_layoutValid = false;
    int m_dirtyFrom = -1; // first element to read again; -1 when the layout is up to date
    int m_dirtyTo = -1;   // last element an edit touched, in the layout before it

    std::vector<int> m_printed;
    bool m_printedValid = false;
    unsigned long m_printedGeneration = 0;
    int m_pagesAnchor = -1; // pages from the one before the page this element ends on may differ; -1: all
    std::vector<LONG> m_pageStarts; // by printed page, -1 where not asked yet
    unsigned long m_pageStartsGeneration = 0;
    ZylLayoutRules m_layoutRules;
};
