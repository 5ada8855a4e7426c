#include "zyltextmodel.h"

#include <QFileInfo>
#include <QUrl>

#include <atomic>
#include <limits>
#include <unordered_map>
#include <utility>

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/beans/XMultiPropertySet.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/beans/XPropertyState.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/document/UndoManagerEvent.hpp>
#include <com/sun/star/document/XDocumentInsertable.hpp>
#include <com/sun/star/document/XUndoManager.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/drawing/XDrawPageSupplier.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/lang/IndexOutOfBoundsException.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/style/BreakType.hpp>
#include <com/sun/star/style/NumberingType.hpp>
#include <com/sun/star/style/XStyleFamiliesSupplier.hpp>
#include <com/sun/star/table/XCell.hpp>
#include <com/sun/star/table/XCellRange.hpp>
#include <com/sun/star/table/XTableRows.hpp>
#include <com/sun/star/text/ControlCharacter.hpp>
#include <com/sun/star/text/PageNumberType.hpp>
#include <com/sun/star/text/XDocumentIndex.hpp>
#include <com/sun/star/text/XPageCursor.hpp>
#include <com/sun/star/text/TextContentAnchorType.hpp>
#include <com/sun/star/text/XTextField.hpp>
#include <com/sun/star/text/XTextFrame.hpp>
#include <com/sun/star/text/XTextFramesSupplier.hpp>
#include <com/sun/star/text/XTextRangeCompare.hpp>
#include <com/sun/star/text/XTextTable.hpp>
#include <com/sun/star/text/XTextViewCursorSupplier.hpp>
#include <cppuhelper/implbase1.hxx>

#include "zylendnotes.h"
#include "zylfilters.h"
#include "zyllog.h"
#include "zylpagestyleimport.h"
#include "zylsplitparagraph.h"
#include "zyltablerows.h"
#include "zylreferences.h"
#include "zyluno.h"

using namespace css;

namespace {

// Nodes an undo step may hold, well below what the office can hold in all of them.
constexpr int kUndoStepNodes = 16000;

// Groups everything done in its lifetime into one undo step.
class UndoContext {
public:
    UndoContext(const uno::Reference<text::XTextDocument> &document, const char *title)
        : m_title(ou(title))
    {
        uno::Reference<document::XUndoManagerSupplier> supplier(document, uno::UNO_QUERY);
        if (supplier.is())
            m_manager = supplier->getUndoManager();
        if (m_manager.is())
            m_manager->enterUndoContext(m_title);
    }
    ~UndoContext() { leave(); }
    UndoContext(const UndoContext &) = delete;
    UndoContext &operator=(const UndoContext &) = delete;

    // The office drops its oldest undo steps to keep their nodes under about 64,000, and never
    // returns when the step still open holds more. Before the step would grow that large, what
    // follows goes into a step of its own.
    void willRemove(int nodes)
    {
        if (m_nodes > 0 && m_nodes + nodes > kUndoStepNodes && m_manager.is()) {
            leave();
            m_manager->enterUndoContext(m_title);
            m_nodes = 0;
        }
        m_nodes += nodes;
    }

private:
    void leave()
    {
        if (!m_manager.is())
            return;
        try {
            m_manager->leaveUndoContext();
        } catch (const uno::Exception &) {
        }
    }

    uno::Reference<document::XUndoManager> m_manager;
    rtl::OUString m_title;
    int m_nodes = 0;
};

// Every change to a document whose controllers are unlocked lays it out again: a cut of a
// hundred pages element by element would take minutes.
class LayoutLock {
public:
    explicit LayoutLock(const uno::Reference<text::XTextDocument> &document)
        : m_model(document, uno::UNO_QUERY)
    {
        if (m_model.is())
            m_model->lockControllers();
    }
    ~LayoutLock()
    {
        if (!m_model.is())
            return;
        try {
            m_model->unlockControllers();
        } catch (const uno::Exception &) {
        }
    }
    LayoutLock(const LayoutLock &) = delete;
    LayoutLock &operator=(const LayoutLock &) = delete;

private:
    uno::Reference<frame::XModel> m_model;
};

rtl::OUString pageStyleOf(const uno::Reference<uno::XInterface> &object)
{
    uno::Reference<beans::XPropertySet> props(object, uno::UNO_QUERY);
    rtl::OUString name;
    if (props.is())
        props->getPropertyValue(ou("PageStyleName")) >>= name;
    return name;
}

bool holdsCharacterPictures(const uno::Reference<text::XTextContent> &paragraph)
{
    uno::Reference<container::XEnumerationAccess> portions(paragraph, uno::UNO_QUERY);
    if (!portions.is())
        return false;
    const uno::Reference<container::XEnumeration> e = portions->createEnumeration();
    while (e->hasMoreElements()) {
        uno::Reference<beans::XPropertySet> portion(e->nextElement(), uno::UNO_QUERY);
        rtl::OUString type;
        if (portion.is())
            portion->getPropertyValue(ou("TextPortionType")) >>= type;
        if (type == ou("Frame"))
            return true;
    }
    return false;
}

} // namespace

struct ZylTextModel::Changes {
    std::atomic<unsigned> foreign{0}; // changes made while no edit of ours ran
    std::atomic<int> ownEdits{0};
};

// The office reports every change of the document to its undo manager's listeners, also where
// the document was loaded read-only and tells its modify listeners nothing; the changes that
// come while none of our edits runs were made by someone else (an undo among them).
class ZylTextModel::ChangeListener : public cppu::WeakImplHelper1<document::XUndoManagerListener> {
public:
    explicit ChangeListener(std::shared_ptr<Changes> changes)
        : m_changes(std::move(changes))
    {
    }
    void SAL_CALL undoActionAdded(const document::UndoManagerEvent &) override { changed(); }
    void SAL_CALL actionUndone(const document::UndoManagerEvent &) override { changed(); }
    void SAL_CALL actionRedone(const document::UndoManagerEvent &) override { changed(); }
    void SAL_CALL leftContext(const document::UndoManagerEvent &) override { changed(); }
    void SAL_CALL leftHiddenContext(const document::UndoManagerEvent &) override { changed(); }
    void SAL_CALL enteredContext(const document::UndoManagerEvent &) override {}
    void SAL_CALL enteredHiddenContext(const document::UndoManagerEvent &) override {}
    void SAL_CALL cancelledContext(const document::UndoManagerEvent &) override {}
    void SAL_CALL allActionsCleared(const lang::EventObject &) override {}
    void SAL_CALL redoActionsCleared(const lang::EventObject &) override {}
    void SAL_CALL resetAll(const lang::EventObject &) override { changed(); }
    void SAL_CALL disposing(const lang::EventObject &) override {}

private:
    void changed()
    {
        if (m_changes->ownEdits.load() == 0)
            ++m_changes->foreign;
    }
    std::shared_ptr<Changes> m_changes;
};

// Marks the changes the office reports meanwhile as our own.
class ZylTextModel::OwnEdit {
public:
    explicit OwnEdit(ZylTextModel &model)
        : m_changes(*model.m_changes)
    {
        model.sync();
        ++m_changes.ownEdits;
    }
    ~OwnEdit() { --m_changes.ownEdits; }
    OwnEdit(const OwnEdit &) = delete;
    OwnEdit &operator=(const OwnEdit &) = delete;

private:
    Changes &m_changes;
};

ZylTextModel::ZylTextModel(const uno::Reference<text::XTextDocument> &document)
    : m_document(document)
    , m_text(document.is() ? document->getText() : uno::Reference<text::XText>())
    , m_changes(std::make_shared<Changes>())
{
}

ZylTextModel::~ZylTextModel() = default;

namespace {

uno::Reference<document::XUndoManager> undoManager(const uno::Reference<text::XTextDocument> &document)
{
    uno::Reference<document::XUndoManagerSupplier> supplier(document, uno::UNO_QUERY);
    return supplier.is() ? supplier->getUndoManager() : nullptr;
}

} // namespace

void ZylTextModel::attach()
{
    const uno::Reference<document::XUndoManager> manager = undoManager(m_document);
    if (!manager.is() || m_listener.is())
        return;
    m_listener = new ChangeListener(m_changes);
    manager->addUndoManagerListener(m_listener);
}

void ZylTextModel::detach()
{
    if (m_listener.is()) {
        try {
            const uno::Reference<document::XUndoManager> manager = undoManager(m_document);
            if (manager.is())
                manager->removeUndoManagerListener(m_listener);
        } catch (const uno::RuntimeException &) {
            // Gone with the office; nothing listens any more.
        }
    }
    m_listener.clear();
    m_layout = Layout();
    m_layoutValid = false;
    m_printed.clear();
    m_printedValid = false;
    m_text.clear();
    m_document.clear();
}

void ZylTextModel::sync()
{
    const unsigned foreign = m_changes->foreign.load();
    if (foreign != m_seenForeign) {
        m_seenForeign = foreign;
        invalidate();
    }
}

void ZylTextModel::invalidate()
{
    ++m_generation;
    m_layoutValid = false;
    m_printedValid = false;
    m_pagesAnchor = -1;
}

unsigned long ZylTextModel::generation()
{
    sync();
    return m_generation;
}

void ZylTextModel::touch(int first, int last)
{
    ++m_generation;
    first = std::max(first, 0);
    if (m_layoutValid) {
        m_dirtyFrom = m_dirtyFrom < 0 ? first : std::min(m_dirtyFrom, first);
        m_dirtyTo = std::max(m_dirtyTo, last);
    }
    // Pages before the one the element ahead of the change ends on stay as they are.
    m_pagesAnchor = m_printedValid ? std::min(m_pagesAnchor, first - 1) : -1;
}

void ZylTextModel::prepareLegacyWordSave()
{
    splitPictureParagraphsAtPages();
    static const std::vector<rtl::OUString> names = {ou("CharHeight"), ou("CharHeightAsian"), ou("CharHeightComplex"),
                                                     ou("CharWeight"), ou("CharPosture"), ou("CharFontName")};
    const uno::Sequence<rtl::OUString> all(names.data(), sal_Int32(names.size()));
    const Layout &l = layout();
    OwnEdit own(*this);
    for (const Element &e : l.elements) {
        uno::Reference<beans::XPropertyState> states(e.content, uno::UNO_QUERY);
        uno::Reference<beans::XMultiPropertySet> values(e.content, uno::UNO_QUERY);
        if (e.isTable) {
            carryPageStyleIntoTable(e.content);
            continue;
        }
        if (e.length != 0 || !states.is() || !values.is())
            continue;
        try {
            const uno::Sequence<beans::PropertyState> found = states->getPropertyStates(all);
            const uno::Sequence<uno::Any> current = values->getPropertyValues(all);
            std::vector<rtl::OUString> unset;
            std::vector<uno::Any> shown;
            for (sal_Int32 i = 0; i < found.getLength(); ++i) {
                if (found[i] != beans::PropertyState_DIRECT_VALUE) {
                    unset.push_back(all[i]);
                    shown.push_back(current[i]);
                }
            }
            if (!unset.empty())
                values->setPropertyValues(uno::Sequence<rtl::OUString>(unset.data(), sal_Int32(unset.size())),
                                          uno::Sequence<uno::Any>(shown.data(), sal_Int32(shown.size())));
        } catch (const uno::Exception &) {
            // It keeps what its style gives it.
        }
    }
}

void ZylTextModel::splitPictureParagraphsAtPages()
{
    // The .doc export drops the page style of a paragraph that runs over more than one page. One of
    // pictures or objects only is split where its pages begin, as a cut of its pages would split it.
    std::vector<int> pages;
    try {
        const std::vector<int> printed = printedPages();
        uno::Reference<frame::XModel> model(m_document, uno::UNO_QUERY_THROW);
        uno::Reference<text::XTextViewCursorSupplier> supplier(model->getCurrentController(), uno::UNO_QUERY_THROW);
        uno::Reference<text::XTextViewCursor> view = supplier->getViewCursor();
        uno::Reference<text::XPageCursor> pageOf(view, uno::UNO_QUERY_THROW);
        for (const Element &e : layout().elements) {
            uno::Reference<beans::XPropertySet> props(e.content, uno::UNO_QUERY);
            rtl::OUString pageDesc;
            if (e.isTable || e.length != 0 || !props.is() || !(props->getPropertyValue(ou("PageDescName")) >>= pageDesc)
                || pageDesc.isEmpty())
                continue;
            uno::Reference<text::XTextRange> range(e.content, uno::UNO_QUERY_THROW);
            view->gotoRange(range->getStart(), false);
            const int first = pageOf->getPage();
            view->gotoRange(range->getEnd(), false);
            const int last = pageOf->getPage();
            for (size_t i = 0; i < printed.size(); ++i) {
                if (printed[i] > first && printed[i] <= last)
                    pages.push_back(int(i) + 1);
            }
        }
    } catch (const uno::RuntimeException &) {
        return; // hidden text has no place in the view
    }
    for (const int page : pages) {
        LONG ignored = 0;
        pageStart(page, &ignored);
    }
}

void ZylTextModel::carryPageStyleIntoTable(const uno::Reference<text::XTextContent> &table)
{
    try {
        uno::Reference<beans::XPropertySet> tableProps(table, uno::UNO_QUERY_THROW);
        rtl::OUString pageDesc;
        tableProps->getPropertyValue(ou("PageDescName")) >>= pageDesc;
        uno::Reference<text::XTextTable> t(table, uno::UNO_QUERY_THROW);
        uno::Reference<container::XEnumerationAccess> cell(t->getCellByName(ou("A1")), uno::UNO_QUERY_THROW);
        uno::Reference<container::XEnumeration> inCell = cell->createEnumeration();
        uno::Reference<lang::XServiceInfo> first(inCell->nextElement(), uno::UNO_QUERY_THROW);
        if (!first->supportsService(ou("com.sun.star.text.Paragraph")))
            return;
        // Layout ignores a page style on a paragraph in a table; a merge leaves the name of the
        // source's style there, which may be the target's of that name.
        if (pageDesc.isEmpty())
            uno::Reference<beans::XPropertyState>(first, uno::UNO_QUERY_THROW)->setPropertyToDefault(ou("PageDescName"));
        else
            uno::Reference<beans::XPropertySet>(first, uno::UNO_QUERY_THROW)->setPropertyValue(ou("PageDescName"), uno::Any(pageDesc));
    } catch (const uno::Exception &) {
        // The table starts the page the .doc way: with the style of the page before it.
    }
}

int ZylTextModel::pageCount()
{
    return int(printedPages().size());
}

int ZylTextModel::pageOfEnd(const Element &e)
{
    try {
        uno::Reference<frame::XModel> model(m_document, uno::UNO_QUERY_THROW);
        uno::Reference<text::XTextViewCursorSupplier> supplier(model->getCurrentController(), uno::UNO_QUERY_THROW);
        uno::Reference<text::XTextViewCursor> view = supplier->getViewCursor();
        uno::Reference<text::XPageCursor> pageCursor(view, uno::UNO_QUERY_THROW);
        uno::Reference<text::XTextRange> range(e.content, uno::UNO_QUERY_THROW);
        view->gotoRange(range->getEnd(), false);
        return int(pageCursor->getPage());
    } catch (const uno::RuntimeException &) {
        return 0; // hidden text has no place in the view
    }
}

const std::vector<int> &ZylTextModel::printedPages()
{
    sync();
    if (m_printedValid && m_printedGeneration == m_generation)
        return m_printed;
    uno::Reference<frame::XModel> model(m_document, uno::UNO_QUERY_THROW);
    uno::Reference<frame::XController> controller = model->getCurrentController();
    uno::Reference<beans::XPropertySet> controllerProps(controller, uno::UNO_QUERY_THROW);
    sal_Int32 pages = 0;
    controllerProps->getPropertyValue(ou("PageCount")) >>= pages;

    // The pages before the one ahead of the first change are laid out as before; the page ahead
    // may have gained or lost the blank page before it.
    int from = 1;
    if (m_printedValid && m_pagesAnchor >= 0) {
        const Layout &l = layout();
        int anchor = std::min(m_pagesAnchor, int(l.elements.size()) - 1);
        while (anchor >= 0 && l.elements[size_t(anchor)].isTable)
            --anchor;
        const int anchorPage = anchor >= 0 ? pageOfEnd(l.elements[size_t(anchor)]) : 0;
        if (anchorPage > 0)
            from = std::max(1, anchorPage - 1);
    }
    std::vector<int> printed;
    for (int page : m_printed) {
        if (from <= 1 || page >= from)
            break;
        printed.push_back(page);
    }
    uno::Reference<text::XTextViewCursorSupplier> supplier(controller, uno::UNO_QUERY_THROW);
    uno::Reference<text::XPageCursor> pageCursor(supplier->getViewCursor(), uno::UNO_QUERY_THROW);
    // The view cursor refuses to go to a blank page: it has nothing to stand on.
    for (sal_Int32 page = from; page <= pages && page <= 32767; ++page) {
        if (pageCursor->jumpToPage(sal_Int16(page)))
            printed.push_back(int(page));
    }
    m_printed.swap(printed);
    m_printedValid = true;
    m_printedGeneration = m_generation;
    m_pagesAnchor = std::numeric_limits<int>::max();
    return m_printed;
}

ZylTextModel::Element ZylTextModel::readElement(const uno::Any &item)
{
    Element e;
    item >>= e.content;
    uno::Reference<text::XTextTable> table(e.content, uno::UNO_QUERY);
    e.isTable = table.is();
    if (e.isTable) {
        e.rows = std::max<int>(1, table->getRows()->getCount());
        e.length = e.rows - 1;
    } else {
        uno::Reference<text::XTextRange> range(e.content, uno::UNO_QUERY);
        e.length = range.is() ? range->getString().getLength() : 0;
    }
    return e;
}

void ZylTextModel::place(Layout &l, size_t from)
{
    int offset = from == 0 ? 0 : l.elements[from - 1].base + l.elements[from - 1].length + 1;
    for (size_t i = from; i < l.elements.size(); ++i) {
        l.elements[i].base = offset;
        offset += l.elements[i].length + 1;
    }
    // The last paragraph has no end mark of its own.
    l.length = l.elements.empty() ? 0 : offset - 1;
    if (!l.elements.empty() && l.elements.back().isTable)
        l.length = offset;
}

void ZylTextModel::readAll()
{
    Layout l;
    uno::Reference<container::XEnumerationAccess> access(m_text, uno::UNO_QUERY_THROW);
    uno::Reference<container::XEnumeration> items = access->createEnumeration();
    while (items->hasMoreElements())
        l.elements.push_back(readElement(items->nextElement()));
    place(l, 0);
    m_layout = std::move(l);
}

bool ZylTextModel::readFrom(int from, int lastTouched)
{
    std::vector<Element> &old = m_layout.elements;
    from = std::min(from, int(old.size()));
    // The selection starts at the end of an unchanged paragraph; a cursor cannot start in a table.
    while (from > 0 && old[size_t(from - 1)].isTable)
        --from;
    if (from <= 0)
        return false;
    uno::Reference<text::XTextRange> anchor(old[size_t(from - 1)].content, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextCursor> cursor = m_text->createTextCursorByRange(anchor->getEnd());
    cursor->gotoEnd(true);
    uno::Reference<container::XEnumerationAccess> access(cursor, uno::UNO_QUERY_THROW);
    uno::Reference<container::XEnumeration> items = access->createEnumeration();
    // The first element is the rest of the anchor paragraph.
    if (!items->hasMoreElements())
        return false;
    uno::Reference<text::XTextContent> first;
    items->nextElement() >>= first;
    if (!first.is() || uno::Reference<text::XTextTable>(first, uno::UNO_QUERY).is())
        return false;

    // Elements after the touched ones that come back as the same objects are unchanged, and so is
    // everything after them.
    std::unordered_map<const void *, size_t> unchanged;
    for (size_t i = size_t(std::max(lastTouched + 2, from)); i < old.size(); ++i)
        unchanged.emplace(old[i].content.get(), i);
    std::vector<Element> fresh;
    size_t resume = old.size();
    while (items->hasMoreElements()) {
        const uno::Any item = items->nextElement();
        uno::Reference<text::XTextContent> content;
        item >>= content;
        const auto same = unchanged.find(content.get());
        if (content.is() && same != unchanged.end()) {
            resume = same->second;
            break;
        }
        fresh.push_back(readElement(item));
    }
    // A selection leaves out an empty paragraph right after a table at its end.
    if (resume == old.size() && (fresh.empty() || fresh.back().isTable))
        return false;
    fresh.insert(fresh.end(), std::make_move_iterator(old.begin() + std::ptrdiff_t(resume)),
                 std::make_move_iterator(old.end()));
    old.erase(old.begin() + from, old.end());
    old.insert(old.end(), std::make_move_iterator(fresh.begin()), std::make_move_iterator(fresh.end()));
    place(m_layout, size_t(from));
    return true;
}

const ZylTextModel::Layout &ZylTextModel::layout()
{
    sync();
    if (m_layoutValid && m_dirtyFrom < 0)
        return m_layout;
    const int from = m_dirtyFrom;
    const int to = m_dirtyTo;
    m_dirtyFrom = m_dirtyTo = -1;
    const bool wasValid = m_layoutValid;
    m_layoutValid = false;
    if (!wasValid || !readFrom(from, to))
        readAll();
    m_layoutValid = true;
    return m_layout;
}

int ZylTextModel::elementAt(const Layout &l, int point)
{
    // Binary search for the last element whose base is at or before the point.
    int lo = 0;
    int hi = int(l.elements.size()) - 1;
    int found = -1;
    while (lo <= hi) {
        const int mid = (lo + hi) / 2;
        if (l.elements[size_t(mid)].base <= point) {
            found = mid;
            lo = mid + 1;
        } else {
            hi = mid - 1;
        }
    }
    if (found < 0)
        return -1;
    const Element &e = l.elements[size_t(found)];
    return point <= e.base + e.length ? found : -1;
}

bool ZylTextModel::sameElement(const Element &a, const Element &b)
{
    if (a.isTable || b.isTable)
        return a.content == b.content;
    uno::Reference<text::XTextRangeCompare> compare(m_text, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextRange> ra(a.content, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextRange> rb(b.content, uno::UNO_QUERY_THROW);
    return compare->compareRegionStarts(ra->getStart(), rb->getStart()) == 0;
}

int ZylTextModel::measure(const uno::Reference<text::XTextRange> &from, const uno::Reference<text::XTextRange> &to)
{
    uno::Reference<text::XTextCursor> c = m_text->createTextCursorByRange(from);
    c->gotoRange(to, true);
    return c->getString().getLength();
}

int ZylTextModel::offsetOf(const Layout &l, const uno::Reference<text::XTextRange> &point, int *element)
{
    uno::Reference<text::XTextRangeCompare> compare(m_text, uno::UNO_QUERY_THROW);
    // Find the first paragraph whose end is not before the point.
    int lo = 0;
    int hi = int(l.elements.size()) - 1;
    int found = -1;
    while (lo <= hi) {
        const int mid = (lo + hi) / 2;
        int probe = mid;
        while (probe <= hi && l.elements[size_t(probe)].isTable)
            ++probe;
        if (probe > hi) {
            hi = mid - 1;
            continue;
        }
        uno::Reference<text::XTextRange> range(l.elements[size_t(probe)].content, uno::UNO_QUERY_THROW);
        // 1: point before the end, 0: at it, -1: after it.
        if (compare->compareRegionStarts(point, range->getEnd()) >= 0) {
            found = probe;
            hi = mid - 1;
        } else {
            lo = probe + 1;
        }
    }
    if (found < 0)
        return -1;
    if (element)
        *element = found;
    const Element &e = l.elements[size_t(found)];
    uno::Reference<text::XTextRange> range(e.content, uno::UNO_QUERY_THROW);
    return e.base + measure(range->getStart(), point);
}

uno::Reference<text::XTextCursor> ZylTextModel::cursorAt(const Layout &l, int point, bool elementStart)
{
    const int index = elementAt(l, point);
    if (index < 0 || l.elements[size_t(index)].isTable)
        return uno::Reference<text::XTextCursor>();
    const Element &e = l.elements[size_t(index)];
    uno::Reference<text::XTextRange> range(e.content, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextCursor> cursor = m_text->createTextCursorByRange(range->getStart());
    const int wanted = point - e.base;
    if (wanted == 0 && elementStart)
        return cursor;
    if (wanted == e.length) {
        cursor->gotoRange(range->getEnd(), false);
        return cursor;
    }
    if (wanted <= 0)
        return cursor;
    cursor->goRight(sal_Int16(std::min(wanted, 32767)), false);
    // Fields and anchored objects count differently for cursor moves and for text; settle on text.
    for (int step = 0; step < 256; ++step) {
        const int have = measure(range->getStart(), cursor->getStart());
        if (have == wanted)
            break;
        if (have < wanted ? !cursor->goRight(1, false) : !cursor->goLeft(1, false))
            break;
    }
    return cursor;
}

void ZylTextModel::placeEndnotes()
{
    // Once, before the first position is given out: a document that is only counted keeps them.
    if (std::exchange(m_endnotesPlaced, true))
        return;
    try {
        if (ZylEndnotes::printInPlace(uno::Reference<frame::XModel>(m_document, uno::UNO_QUERY)))
            invalidate();
    } catch (const uno::Exception &e) {
        qCInfo(lcZylServer) << "the endnotes stay endnotes:" << toQString(e.Message);
    }
}

HRESULT ZylTextModel::pageStart(int page, LONG *position)
{
    placeEndnotes();
    const size_t count = printedPages().size();
    if (page < 1 || size_t(page) > count)
        return E_INVALIDARG;
    if (m_pageStartsGeneration != m_generation || m_pageStarts.size() != count) {
        m_pageStarts.assign(count, -1);
        m_pageStartsGeneration = m_generation;
    }
    LONG &cached = m_pageStarts[size_t(page - 1)];
    if (cached < 0) {
        const HRESULT hr = findPageStart(page, &cached);
        if (FAILED(hr)) {
            cached = -1;
            return hr;
        }
    }
    *position = cached;
    return S_OK;
}

HRESULT ZylTextModel::findPageStart(int page, LONG *position, bool maySplit)
{
    const std::vector<int> printed = printedPages();
    if (page < 1 || page > int(printed.size()))
        return E_INVALIDARG;
    if (page == 1) {
        *position = 0;
        return S_OK;
    }
    const int layoutPage = printed[size_t(page - 1)];
    uno::Reference<frame::XModel> model(m_document, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextViewCursorSupplier> supplier(model->getCurrentController(), uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextViewCursor> view = supplier->getViewCursor();
    uno::Reference<text::XPageCursor> pageCursor(view, uno::UNO_QUERY_THROW);
    if (!pageCursor->jumpToPage(sal_Int16(layoutPage)))
        return E_INVALIDARG;
    // A page that begins in a table with repeated heading rows puts the cursor into the heading
    // row where the table began, on an earlier page.
    const bool inRepeatedHeading = pageCursor->getPage() != layoutPage;
    if (!inRepeatedHeading)
        pageCursor->jumpToStartOfPage();

    const Layout &l = layout();
    uno::Reference<text::XText> viewText = view->getText();
    if (inRepeatedHeading && viewText == m_text) {
        qCInfo(lcZylServer) << "GoTo page" << page << ": begins under a repeated heading row in body text";
        return E_FAIL;
    }
    if (viewText == m_text) {
        int index = -1;
        const int x = offsetOf(l, view->getStart(), &index);
        if (x < 0) {
            qCInfo(lcZylServer) << "GoTo page" << page << ": its start is not in a body paragraph";
            return E_FAIL;
        }
        uno::Reference<text::XTextRange> paragraph(l.elements[size_t(index)].content, uno::UNO_QUERY_THROW);
        uno::Reference<text::XTextRangeCompare> compare(m_text, uno::UNO_QUERY_THROW);
        if (maySplit && x == l.elements[size_t(index)].base && compare->compareRegionStarts(paragraph->getStart(), view->getStart()) > 0) {
            // The page begins after pictures or objects in the text of its paragraph, which no
            // position in the text tells apart from its start: the paragraph is split there.
            OwnEdit own(*this);
            touch(index, index + 1);
            m_text->insertControlCharacter(view->getStart(), text::ControlCharacter::PARAGRAPH_BREAK, false);
            return findPageStart(page, position, false);
        }
        const bool atParagraphStart = x == l.elements[size_t(index)].base;
        const bool afterParagraph = index > 0 && !l.elements[size_t(index - 1)].isTable;
        *position = (atParagraphStart && afterParagraph) ? x : x + 1;
        return S_OK;
    }

    // The page begins inside a table (at its first cell when the table starts the page), or in
    // notes.
    uno::Reference<beans::XPropertySet> viewProps(view, uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextTable> table;
    viewProps->getPropertyValue(ou("TextTable")) >>= table;
    if (!table.is()) {
        // A page of notes only, after the body has ended.
        *position = l.length + 1;
        return S_OK;
    }
    const auto indexOf = [&](const uno::Reference<text::XTextTable> &t) {
        const uno::Reference<text::XTextContent> content(t, uno::UNO_QUERY);
        for (size_t i = 0; i < l.elements.size(); ++i) {
            if (l.elements[i].isTable && l.elements[i].content == content)
                return int(i);
        }
        return -1;
    };
    int index = indexOf(table);
    // In a table nested in another, the page begins in the row of the outer one that holds it.
    bool nested = false;
    for (int depth = 0; index < 0 && depth < 8; ++depth) {
        uno::Reference<beans::XPropertySet> anchor(table->getAnchor(), uno::UNO_QUERY);
        uno::Reference<text::XTextTable> outer;
        if (anchor.is())
            anchor->getPropertyValue(ou("TextTable")) >>= outer;
        if (!outer.is())
            break;
        table = outer;
        index = indexOf(table);
        nested = true;
    }
    if (index < 0) {
        qCInfo(lcZylServer) << "GoTo page" << page << ": begins in a table in a frame";
        return E_FAIL;
    }
    uno::Reference<beans::XPropertySet> cell;
    viewProps->getPropertyValue(ou("Cell")) >>= cell;
    rtl::OUString cellName;
    if (cell.is())
        cell->getPropertyValue(ou("CellName")) >>= cellName;
    const Element &e = l.elements[size_t(index)];
    const int base = e.base;
    uno::Reference<table::XCellRange> cells(table, uno::UNO_QUERY_THROW);
    auto rowPage = [&](int row) -> int {
        try {
            uno::Reference<text::XText> cellText(cells->getCellByPosition(0, row), uno::UNO_QUERY);
            if (!cellText.is())
                return -1;
            view->gotoRange(cellText->getStart(), false);
            return pageCursor->getPage();
        } catch (const lang::IndexOutOfBoundsException &) {
            return -1;
        } catch (const uno::RuntimeException &) {
            return -1;
        }
    };
    if (cellName == ou("A1") && !nested && !inRepeatedHeading && rowPage(0) >= layoutPage) {
        *position = base + 1;
        return S_OK;
    }
    // The first row that begins on this page.
    int lo = 1;
    int hi = e.rows; // e.rows: no row of the table begins on this page
    while (lo < hi) {
        const int mid = (lo + hi) / 2;
        const int p = rowPage(mid);
        if (p < 0) {
            qCInfo(lcZylServer) << "GoTo page" << page << ": cannot find the page of row" << mid;
            return E_FAIL;
        }
        if (p >= layoutPage)
            hi = mid;
        else
            lo = mid + 1;
    }
    // The row before it may run onto this page: split where the page begins, the page starts with
    // its second part.
    if (lo - 1 >= headingRows(e)) {
        OwnEdit own(*this);
        UndoContext undo(m_document, "Split row");
        if (ZylTableRows::splitAtPage(model->getCurrentController(), table, lo - 1, layoutPage))
            touch(index, index + 1);
    }
    *position = base + lo + 1;
    return S_OK;
}

LONG ZylTextModel::endPosition()
{
    placeEndnotes();
    return layout().length + 1;
}

// Before a cut of the pages from start to the end: the pages before it are to stay as they are.
void ZylTextModel::keepPagesBefore(const Layout &l, LONG start)
{
    // Only a page start asked for already, as a cut of pages does.
    const auto asked = std::find(m_pageStarts.begin(), m_pageStarts.end(), start);
    const std::vector<int> printed = printedPages();
    if (m_pageStartsGeneration != m_generation || asked == m_pageStarts.end() || m_pageStarts.size() != printed.size())
        return;
    const size_t firstCut = size_t(asked - m_pageStarts.begin());
    // The last page kept may begin where it does only because of what follows: a paragraph kept
    // with the next, which a page break after them moves on with it; without that break it ran
    // back. Its start is read without splitting a paragraph, as the cut is placed already.
    LONG lastKept = firstCut >= 2 ? m_pageStarts[firstCut - 1] : -1;
    if (firstCut >= 2 && (lastKept >= 0 || SUCCEEDED(findPageStart(int(firstCut), &lastKept, false)))) {
        const int index = elementAt(l, int(lastKept));
        uno::Reference<beans::XPropertySet> props(index > 0 ? l.elements[size_t(index)].content : nullptr, uno::UNO_QUERY);
        if (props.is() && !l.elements[size_t(index)].isTable && l.elements[size_t(index)].base == lastKept) {
            const BreakState state = breakStateOf(l.elements[size_t(index)]);
            bool keptWithNext = false;
            props->getPropertyValue(ou("ParaKeepTogether")) >>= keptWithNext;
            if (keptWithNext && state.valid && state.pageDesc.isEmpty() && state.breakType == style::BreakType_NONE)
                props->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_PAGE_BEFORE));
        }
    }
    // A frame anchored before the cut but shown on the pages cut (its paragraph runs on to them)
    // made a page of its own once the document was opened again.
    uno::Reference<text::XTextFramesSupplier> supplier(m_document, uno::UNO_QUERY);
    uno::Reference<frame::XModel> model(m_document, uno::UNO_QUERY);
    if (!supplier.is() || !model.is())
        return;
    uno::Reference<text::XTextViewCursorSupplier> views(model->getCurrentController(), uno::UNO_QUERY_THROW);
    uno::Reference<text::XTextViewCursor> view = views->getViewCursor();
    uno::Reference<text::XPageCursor> pageOf(view, uno::UNO_QUERY_THROW);
    const uno::Reference<container::XNameAccess> frames = supplier->getTextFrames();
    std::vector<uno::Reference<text::XTextContent>> shownThere;
    for (const rtl::OUString &name : frames->getElementNames()) {
        uno::Reference<text::XTextFrame> frame(frames->getByName(name), uno::UNO_QUERY);
        uno::Reference<beans::XPropertySet> props(frame, uno::UNO_QUERY);
        text::TextContentAnchorType anchorType = text::TextContentAnchorType_AT_PAGE;
        if (!frame.is() || !props.is() || !(props->getPropertyValue(ou("AnchorType")) >>= anchorType)
            || (anchorType != text::TextContentAnchorType_AT_PARAGRAPH && anchorType != text::TextContentAnchorType_AT_CHARACTER)
            || frame->getAnchor()->getText() != m_text)
            continue;
        view->gotoRange(frame->getText()->getStart(), false);
        if (pageOf->getPage() >= printed[firstCut])
            shownThere.emplace_back(frame, uno::UNO_QUERY);
    }
    for (const auto &frame : shownThere)
        m_text->removeTextContent(frame);
}

HRESULT ZylTextModel::deleteRange(LONG start, LONG end)
{
    placeEndnotes();
    const Layout l = layout();
    start = std::max<LONG>(0, std::min<LONG>(start, l.length + 1));
    end = std::max<LONG>(0, std::min<LONG>(end, l.length + 1));
    if (start >= end || l.elements.empty())
        return S_OK;
    Cut cut;
    cut.fromVirtualMark = start == 0;
    cut.rs = cut.fromVirtualMark ? 0 : int(start) - 1;
    cut.re = int(end) - 1;
    if (!placeCutStart(l, cut))
        return S_OK;
    if (!placeCutEnd(l, cut))
        return E_FAIL;
    balanceCutEnds(l, cut);

    const int last = int(l.elements.size()) - 1;
    OwnEdit own(*this);
    UndoContext undo(m_document, "Delete");
    if (cut.end == CutEnd::BodyEnd && start > 0)
        keepPagesBefore(l, start);
    const ZylReferences references(m_document);
    touch(cut.fromVirtualMark ? 0 : cut.startIndex - 1, std::min(last, cut.endIndex + 1));
    // What starts the body after a cut from its start (its ends may have moved to whole elements).
    const int keptIndex = start != 0 || cut.end == CutEnd::BodyEnd ? -1
        : cut.end == CutEnd::Mark                                             ? cut.endIndex + 1
                                                                              : cut.endIndex;
    const std::vector<ListNumber> listNumbers =
        cut.end == CutEnd::BodyEnd ? std::vector<ListNumber>() : listNumbersAfter(l, cut.end == CutEnd::Mark ? cut.endIndex + 1 : cut.endIndex);
    BreakState kept;
    int keptNumber = 0;
    if (keptIndex >= 0 && keptIndex <= last) {
        kept = breakStateOf(l.elements[size_t(keptIndex)]);
        // Its number decides how the page looks where its style has left and right pages.
        if (ZylPageStyleImport::hasSides(m_document, kept.layoutStyle))
            keptNumber = printedNumberAt(l.elements[size_t(keptIndex)]);
    }
    if (cut.start != CutEnd::Boundary && cut.end != CutEnd::Boundary) {
        // The text deletion is one undo action: what lies whole between its ends goes first where
        // it holds more than one step can. A cut from the body's start into a paragraph removes
        // all before that paragraph first: the text joined to the first paragraph took its style.
        const bool intoParagraph = cut.fromVirtualMark && cut.end == CutEnd::Text && cut.endIndex > 0;
        const int from = intoParagraph ? 0 : std::max(cut.firstWhole, cut.startIndex + 1);
        const int to = intoParagraph ? cut.endIndex - 1 : cut.lastWhole;
        int nodes = 0;
        for (int i = from; i <= to && nodes <= kUndoStepNodes; ++i)
            nodes += nodesOf(l.elements[size_t(i)]);
        int re = cut.re;
        int followerIndex = cut.end == CutEnd::Mark ? cut.endIndex + 1 : -1;
        const Layout *rest = &l;
        Layout shortened;
        if (intoParagraph || nodes > kUndoStepNodes) {
            {
                LayoutLock lock(m_document);
                removeWhole(l, from, to, [&](int n) { undo.willRemove(n); });
            }
            const Element &lastWhole = l.elements[size_t(to)];
            re -= lastWhole.base + lastWhole.length + 1 - l.elements[size_t(from)].base;
            if (followerIndex >= 0)
                followerIndex -= to - from + 1;
            shortened = layout();
            rest = &shortened;
        }
        deleteText(*rest, cut.rs, re, cut.fromVirtualMark, followerIndex);
        if (kept.valid)
            keepFirstPage(l.elements[size_t(keptIndex)], kept, keptNumber);
        keepDividedLooks(cut, kept);
        keepOrphanedTexts(references);
        keepListNumbers(listNumbers);
        return S_OK;
    }

    // The element after the cut keeps its own break and page style.
    const int followerIndex = cut.end == CutEnd::BodyEnd ? -1 : cut.endIndex;
    BreakState follower;
    if (followerIndex >= 0)
        follower = breakStateOf(l.elements[size_t(followerIndex)]);
    {
        LayoutLock lock(m_document);
        cutPartialEnds(l, cut);
        cutTableRows(l, cut);
        removeWhole(l, cut.firstWhole, cut.lastWhole, [&](int nodes) { undo.willRemove(nodes); });
        settleAfterCut(l, cut, followerIndex, follower);
    }
    if (kept.valid)
        keepFirstPage(l.elements[size_t(keptIndex)], kept, keptNumber);
    keepDividedLooks(cut, kept);
    keepOrphanedTexts(references);
    keepListNumbers(listNumbers);
    return S_OK;
}

std::vector<ZylTextModel::ListNumber> ZylTextModel::listNumbersAfter(const Layout &l, int firstKept)
{
    // Lists that run on over a page break are what a cut meets; the first items after it are
    // enough. Items of the first level only: the office restarts a list at one level, and the
    // levels above would count from their start.
    const int scanned = 30;
    const int walked = 5000;
    std::vector<ListNumber> numbers;
    std::vector<rtl::OUString> seen;
    const auto paragraphAt = [&](int i) -> uno::Reference<beans::XPropertySet> {
        return l.elements[size_t(i)].isTable ? nullptr : uno::Reference<beans::XPropertySet>(l.elements[size_t(i)].content, uno::UNO_QUERY);
    };
    const auto read = [](const uno::Reference<beans::XPropertySet> &p, const char *name, auto fallback) {
        p->getPropertyValue(ou(name)) >>= fallback;
        return fallback;
    };
    try {
        for (int i = std::max(0, firstKept); i < int(l.elements.size()) && i < firstKept + scanned; ++i) {
            const uno::Reference<beans::XPropertySet> item = paragraphAt(i);
            const rtl::OUString list = item.is() ? read(item, "ListId", rtl::OUString()) : rtl::OUString();
            if (list.isEmpty() || std::find(seen.begin(), seen.end(), list) != seen.end())
                continue;
            const rtl::OUString label = read(item, "ListLabelString", rtl::OUString());
            if (label.isEmpty() || read(item, "NumberingLevel", sal_Int16(0)) != 0 || !read(item, "NumberingIsNumber", false))
                continue;
            seen.push_back(list);
            // Its number: the items of its list before it, from the list's start or the last restart.
            sal_Int32 before = 0;
            sal_Int32 start = 1;
            uno::Reference<container::XIndexAccess> rules(item->getPropertyValue(ou("NumberingRules")), uno::UNO_QUERY);
            uno::Sequence<beans::PropertyValue> first;
            if (rules.is() && rules->getCount() > 0 && (rules->getByIndex(0) >>= first)) {
                for (const beans::PropertyValue &value : std::as_const(first)) {
                    if (value.Name == "StartWith")
                        value.Value >>= start;
                }
            }
            if (read(item, "ParaIsNumberingRestart", false))
                continue; // it keeps its number itself
            for (int j = i - 1; j >= 0 && j >= i - walked; --j) {
                const uno::Reference<beans::XPropertySet> earlier = paragraphAt(j);
                if (!earlier.is() || read(earlier, "ListId", rtl::OUString()) != list || read(earlier, "NumberingLevel", sal_Int16(0)) != 0
                    || !read(earlier, "NumberingIsNumber", false))
                    continue;
                ++before;
                if (read(earlier, "ParaIsNumberingRestart", false)) {
                    const sal_Int16 restartedAt = read(earlier, "NumberingStartValue", sal_Int16(-1));
                    if (restartedAt >= 0)
                        start = restartedAt;
                    break;
                }
            }
            numbers.push_back({item, label, start + before});
        }
    } catch (const uno::Exception &e) {
        qCInfo(lcZylServer) << "list numbers after a cut are not kept:" << toQString(e.Message);
    }
    return numbers;
}

void ZylTextModel::keepListNumbers(const std::vector<ListNumber> &numbers)
{
    for (const ListNumber &n : numbers) {
        try {
            rtl::OUString now;
            n.paragraph->getPropertyValue(ou("ListLabelString")) >>= now;
            if (now == n.label)
                continue;
            n.paragraph->setPropertyValue(ou("ParaIsNumberingRestart"), uno::Any(true));
            n.paragraph->setPropertyValue(ou("NumberingStartValue"), uno::Any(sal_Int16(n.value)));
            n.paragraph->getPropertyValue(ou("ListLabelString")) >>= now;
            if (now != n.label) // counted otherwise than the office does: as the cut left it
                n.paragraph->setPropertyValue(ou("ParaIsNumberingRestart"), uno::Any(false));
        } catch (const uno::Exception &) {
            // Gone with the cut, or not a list item any more.
        }
    }
}

void ZylTextModel::keepOrphanedTexts(const ZylReferences &references)
{
    LayoutLock lock(m_document);
    references.keepOrphanedTexts();
}

void ZylTextModel::keepDividedLooks(const Cut &cut, const BreakState &kept)
{
    // A cut where a page begins inside a paragraph keeps the part of it on the pages that stay.
    const Layout after = layout();
    const auto paragraphAt = [&](int point) -> uno::Reference<beans::XPropertySet> {
        const int index = elementAt(after, point);
        if (index < 0 || after.elements[size_t(index)].isTable)
            return nullptr;
        touch(index, index + 1);
        return uno::Reference<beans::XPropertySet>(after.elements[size_t(index)].content, uno::UNO_QUERY);
    };
    if (cut.end == CutEnd::Text && (cut.fromVirtualMark || cut.start == CutEnd::Boundary)) {
        const auto rest = paragraphAt(cut.fromVirtualMark ? 0 : cut.rs);
        if (rest.is())
            ZylSplitParagraph::continueAfterBreak(rest);
    } else if (kept.valid && kept.breakType == style::BreakType_NONE && kept.pageDesc.isEmpty()
               && !spacingAtPageTops()) {
        // A paragraph that began its page where the text ran over had no spacing above it there,
        // where the document follows the Word formats' rule; first in the body, it would.
        const auto first = paragraphAt(0);
        if (first.is())
            first->setPropertyValue(ou("ParaTopMargin"), uno::Any(sal_Int32(0)));
    }
    if (cut.start == CutEnd::Text && cut.end == CutEnd::BodyEnd && cut.rs > 0) {
        const auto head = paragraphAt(cut.rs - 1);
        if (head.is())
            ZylSplitParagraph::endAtBreak(head);
    }
}

bool ZylTextModel::spacingAtPageTops()
{
    return documentSetting(m_document, "AddParaTableSpacing", true);
}

int ZylTextModel::printedNumberAt(const Element &e)
{
    // The office tells a page's number to a page number field on it, offsets and all.
    try {
        uno::Reference<text::XTextRange> where(e.content, uno::UNO_QUERY);
        if (e.isTable) {
            uno::Reference<table::XCellRange> cells(e.content, uno::UNO_QUERY_THROW);
            where.set(cells->getCellByPosition(0, 0), uno::UNO_QUERY);
        }
        if (!where.is())
            return 0;
        uno::Reference<lang::XMultiServiceFactory> factory(m_document, uno::UNO_QUERY_THROW);
        uno::Reference<text::XTextField> field(factory->createInstance(ou("com.sun.star.text.TextField.PageNumber")),
                                               uno::UNO_QUERY_THROW);
        uno::Reference<beans::XPropertySet> props(field, uno::UNO_QUERY_THROW);
        props->setPropertyValue(ou("NumberingType"), uno::Any(style::NumberingType::ARABIC));
        props->setPropertyValue(ou("SubType"), uno::Any(text::PageNumberType_CURRENT));
        const uno::Reference<text::XText> text = where->getText();
        const uno::Reference<text::XTextContent> content(field, uno::UNO_QUERY_THROW);
        text->insertTextContent(where->getStart(), content, false);
        const int number = toQString(field->getPresentation(false)).toInt();
        text->removeTextContent(content);
        return number;
    } catch (const uno::Exception &) {
        return 0;
    }
}

void ZylTextModel::keepFirstPage(const Element &e, const BreakState &before, int number)
{
    uno::Reference<beans::XPropertySet> props(e.content, uno::UNO_QUERY);
    if (!props.is())
        return;
    try {
        rtl::OUString style = before.pageDesc;
        if (style.isEmpty() && !before.layoutStyle.isEmpty()) {
            style = ZylPageStyleImport::continuedStyle(m_document, before.layoutStyle);
            // First in the body, it would take the default page style.
            if (style != ou("Standard") || number > 0)
                props->setPropertyValue(ou("PageDescName"), uno::Any(style));
        }
        // A number takes only with a page style named.
        if (number > 0 && !style.isEmpty())
            props->setPropertyValue(ou("PageNumberOffset"), uno::Any(sal_Int16(number)));
    } catch (const uno::Exception &) {
        // Its page keeps what the style gives it.
    }
}

bool ZylTextModel::placeCutStart(const Layout &l, Cut &cut)
{
    const int last = int(l.elements.size()) - 1;
    cut.startIndex = cut.fromVirtualMark ? 0 : elementAt(l, cut.rs);
    if (cut.startIndex < 0)
        return false;
    const Element &se = l.elements[size_t(cut.startIndex)];
    cut.firstWhole = cut.startIndex;
    if (cut.fromVirtualMark) {
        cut.start = CutEnd::Mark;
    } else if (se.isTable) {
        cut.start = CutEnd::Boundary;
        cut.firstWhole = cut.rs == se.base ? cut.startIndex : cut.startIndex + 1;
        if (cut.rs > se.base)
            cut.rowsFrom = cut.rs - se.base;
    } else if (cut.rs == se.base + se.length && cut.startIndex < last) {
        cut.start = CutEnd::Mark;
        cut.firstWhole = cut.startIndex + 1;
    } else if (cut.rs == se.base) {
        cut.start = CutEnd::Boundary;
    } else {
        cut.start = CutEnd::Text;
        cut.firstWhole = cut.startIndex + 1;
    }
    return true;
}

bool ZylTextModel::placeCutEnd(const Layout &l, Cut &cut)
{
    const int last = int(l.elements.size()) - 1;
    cut.endIndex = last;
    cut.lastWhole = last - 1;
    if (cut.re >= l.length) {
        cut.end = CutEnd::BodyEnd;
        return true;
    }
    cut.endIndex = elementAt(l, cut.re);
    if (cut.endIndex < 0) {
        qCWarning(lcZylServer) << "a cut ends outside the body:" << cut.re << "of" << l.length;
        return false;
    }
    const Element &ee = l.elements[size_t(cut.endIndex)];
    cut.lastWhole = cut.endIndex - 1;
    cut.end = CutEnd::Text;
    if (ee.isTable) {
        cut.end = CutEnd::Boundary;
        if (cut.re > ee.base)
            cut.rowsTo = cut.re - ee.base;
    } else if (cut.re == ee.base + ee.length && cut.endIndex < last) {
        cut.end = CutEnd::Mark;
    } else if (cut.re == ee.base) {
        cut.end = CutEnd::Boundary;
    }
    return true;
}

void ZylTextModel::balanceCutEnds(const Layout &l, Cut &cut)
{
    // A cut that removes one end mark must keep another; where one end cannot, both ends move to
    // whole elements, so no paragraph is joined to another and none is left empty.
    const Element &se = l.elements[size_t(cut.startIndex)];
    if (cut.start == CutEnd::Mark && cut.end == CutEnd::Boundary) {
        cut.start = CutEnd::Boundary;
        cut.fromVirtualMark = false;
        cut.rs = l.elements[size_t(cut.firstWhole)].base;
    } else if (cut.start == CutEnd::Boundary && cut.end == CutEnd::Mark) {
        cut.end = CutEnd::Boundary;
        cut.lastWhole = cut.endIndex;
        ++cut.endIndex;
        cut.re = l.elements[size_t(cut.endIndex)].base;
    } else if (cut.start == CutEnd::Boundary && cut.end == CutEnd::BodyEnd && cut.rs == se.base && cut.startIndex > 0
               && !l.elements[size_t(cut.startIndex - 1)].isTable) {
        cut.start = CutEnd::Mark;
        cut.rs = se.base - 1;
    }
}

void ZylTextModel::cutPartialEnds(const Layout &l, const Cut &cut)
{
    const auto clear = [&](int from, int to) {
        uno::Reference<text::XTextCursor> a = cursorAt(l, from, true);
        uno::Reference<text::XTextCursor> b = cursorAt(l, to);
        if (a.is() && b.is()) {
            a->gotoRange(b->getStart(), true);
            a->setString(rtl::OUString());
        }
    };
    if (cut.start == CutEnd::Text) {
        const Element &se = l.elements[size_t(cut.startIndex)];
        clear(cut.rs, se.base + se.length);
    }
    if (cut.end == CutEnd::Text || cut.end == CutEnd::BodyEnd)
        clear(l.elements[size_t(cut.endIndex)].base, std::min(cut.re, l.length));
}

void ZylTextModel::cutTableRows(const Layout &l, const Cut &cut)
{
    // Heading rows stay with the rows that stay.
    if (cut.rowsFrom > 0 && cut.startIndex == cut.endIndex && cut.rowsTo > cut.rowsFrom) {
        removeRows(l.elements[size_t(cut.startIndex)], cut.rowsFrom, cut.rowsTo);
        return;
    }
    if (cut.rowsFrom > 0) {
        const Element &se = l.elements[size_t(cut.startIndex)];
        removeRows(se, cut.rowsFrom, se.rows);
    }
    if (cut.rowsTo > 0)
        removeRows(l.elements[size_t(cut.endIndex)], headingRows(l.elements[size_t(cut.endIndex)]), cut.rowsTo);
}

int ZylTextModel::nodesOf(const Element &e)
{
    if (!e.isTable)
        return 1;
    // A cell holds a start, an end and a paragraph.
    const uno::Reference<text::XTextTable> table(e.content, uno::UNO_QUERY);
    return table.is() ? 3 * int(table->getCellNames().getLength()) + 2 : 1;
}

void ZylTextModel::removeWhole(const Layout &l, int first, int last, const std::function<void(int)> &willRemove)
{
    // An index's heading cannot go on its own: an index that lies wholly in the cut goes as one.
    const auto indexOf = [&](int i) -> uno::Reference<text::XDocumentIndex> {
        uno::Reference<beans::XPropertySet> props(i >= 0 && i < int(l.elements.size()) && !l.elements[size_t(i)].isTable
                                                      ? l.elements[size_t(i)].content : nullptr,
                                                  uno::UNO_QUERY);
        uno::Reference<text::XDocumentIndex> index;
        if (props.is())
            props->getPropertyValue(ou("DocumentIndex")) >>= index;
        return index;
    };
    const uno::Reference<text::XDocumentIndex> before = indexOf(first - 1);
    const uno::Reference<text::XDocumentIndex> after = indexOf(last + 1);
    // Read before anything goes: an index takes its paragraphs with it.
    std::vector<uno::Reference<text::XDocumentIndex>> indexes;
    for (int i = first; i <= last; ++i)
        indexes.push_back(indexOf(i));
    for (int i = last; i >= first; --i) {
        const uno::Reference<text::XDocumentIndex> &index = indexes[size_t(i - first)];
        willRemove(nodesOf(l.elements[size_t(i)]));
        if (index.is() && index != before && index != after) {
            if (i == first || indexes[size_t(i - first - 1)] != index)
                index->dispose();
            continue;
        }
        uno::Reference<lang::XComponent> element(l.elements[size_t(i)].content, uno::UNO_QUERY);
        if (element.is())
            element->dispose();
    }
}

void ZylTextModel::settleAfterCut(const Layout &l, const Cut &cut, int followerIndex, const BreakState &follower)
{
    if (cut.end == CutEnd::BodyEnd && cut.firstWhole > 0) {
        // The body's last paragraph cannot go; emptied, it must not start a page of its own.
        uno::Reference<beans::XPropertySet> remnant(l.elements[size_t(cut.endIndex)].content, uno::UNO_QUERY);
        if (remnant.is()) {
            remnant->setPropertyValue(ou("PageDescName"), uno::Any(rtl::OUString()));
            remnant->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_NONE));
            // After a table that fills its last page it would take a page of its own.
            if (l.elements[size_t(cut.firstWhole - 1)].isTable)
                remnant->setPropertyValue(ou("CharHidden"), uno::Any(true));
        }
    }
    if (followerIndex >= 0)
        restoreBreak(l.elements[size_t(followerIndex)], follower);
    if (cut.rowsTo > 0 && cut.rowsFrom <= 0 && cut.rs > 0 && follower.valid
        && follower.breakType == style::BreakType_NONE && follower.pageDesc.isEmpty()) {
        // The rows that stay began a page; they still do, rather than run on after the page before.
        uno::Reference<beans::XPropertySet> table(l.elements[size_t(cut.endIndex)].content, uno::UNO_QUERY);
        rtl::OUString pageDesc;
        if (table.is())
            table->getPropertyValue(ou("PageDescName")) >>= pageDesc;
        if (table.is() && pageDesc.isEmpty())
            table->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_PAGE_BEFORE));
    }
}

void ZylTextModel::deleteText(const Layout &l, int rs, int re, bool fromVirtualMark, int followerIndex)
{
    BreakState follower;
    if (followerIndex >= 0 && followerIndex < int(l.elements.size()))
        follower = breakStateOf(l.elements[size_t(followerIndex)]);
    uno::Reference<text::XTextCursor> from = cursorAt(l, rs);
    uno::Reference<text::XTextCursor> to = cursorAt(l, std::min(re, l.length));
    if (!from.is() || !to.is())
        return;
    // Tables and pictures wholly between the ends go with the text.
    from->gotoRange(to->getStart(), true);
    from->setString(rtl::OUString());
    if (fromVirtualMark && follower.valid) {
        // What is left of the first deleted paragraph goes too, so the follower starts the body.
        const Layout after = layout();
        if (after.elements.size() > 1 && !after.elements.front().isTable && after.elements.front().length == 0
            && sameElement(after.elements[1], l.elements[size_t(followerIndex)])) {
            // The last paragraph of a text section cannot go while the section is there.
            uno::Reference<beans::XPropertySet> props(after.elements.front().content, uno::UNO_QUERY);
            uno::Reference<lang::XComponent> section;
            if (props.is())
                props->getPropertyValue(ou("TextSection")) >>= section;
            uno::Reference<beans::XPropertySet> followerProps(after.elements[1].content, uno::UNO_QUERY);
            uno::Reference<lang::XComponent> followerSection;
            if (followerProps.is())
                followerProps->getPropertyValue(ou("TextSection")) >>= followerSection;
            touch(0, 1);
            if (section.is() && section != followerSection)
                section->dispose();
            uno::Reference<lang::XComponent>(after.elements.front().content, uno::UNO_QUERY_THROW)->dispose();
        }
    }
    if (follower.valid)
        restoreBreak(l.elements[size_t(followerIndex)], follower);
}

int ZylTextModel::headingRows(const Element &e)
{
    uno::Reference<beans::XPropertySet> props(e.content, uno::UNO_QUERY);
    bool repeated = false;
    sal_Int32 count = 0;
    if (props.is()) {
        props->getPropertyValue(ou("RepeatHeadline")) >>= repeated;
        props->getPropertyValue(ou("HeaderRowCount")) >>= count;
    }
    return repeated ? std::max<int>(0, int(count)) : 0;
}

void ZylTextModel::removeRows(const Element &e, int from, int to)
{
    from = std::max(from, 0);
    to = std::min(to, e.rows);
    if (to <= from)
        return;
    uno::Reference<text::XTextTable> table(e.content, uno::UNO_QUERY_THROW);
    table->getRows()->removeByIndex(from, to - from);
}

void ZylTextModel::startRunAtBreak(const Element &e)
{
    // The Word format keeps the end of a run of page styles in the run's last paragraph and drops
    // that paragraph on reading where it is empty: an empty page that a break starts went with it.
    // Starting a run of its own, the paragraph no longer ends the one before.
    if (e.isTable || e.length != 0)
        return;
    const BreakState state = breakStateOf(e);
    if (!state.valid || state.breakType != style::BreakType_PAGE_BEFORE || !state.pageDesc.isEmpty()
        || state.layoutStyle.isEmpty())
        return;
    uno::Reference<beans::XPropertySet> props(e.content, uno::UNO_QUERY_THROW);
    props->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_NONE));
    props->setPropertyValue(ou("PageDescName"), uno::Any(ZylPageStyleImport::continuedStyle(m_document, state.layoutStyle)));
}

ZylTextModel::BreakState ZylTextModel::breakStateOf(const Element &e)
{
    BreakState state;
    uno::Reference<beans::XPropertySet> props(e.content, uno::UNO_QUERY);
    if (!props.is())
        return state;
    props->getPropertyValue(ou("PageDescName")) >>= state.pageDesc;
    props->getPropertyValue(ou("BreakType")) >>= state.breakType;
    state.layoutStyle = layoutStyleOf(e);
    state.valid = true;
    return state;
}

rtl::OUString ZylTextModel::layoutStyleOf(const Element &e)
{
    if (!e.isTable)
        return pageStyleOf(e.content);
    // A table is laid out on the pages of its first cell's paragraphs.
    uno::Reference<table::XCellRange> cells(e.content, uno::UNO_QUERY);
    if (!cells.is())
        return rtl::OUString();
    try {
        uno::Reference<container::XEnumerationAccess> cell(cells->getCellByPosition(0, 0), uno::UNO_QUERY);
        if (!cell.is())
            return rtl::OUString();
        uno::Reference<container::XEnumeration> paragraphs = cell->createEnumeration();
        if (!paragraphs->hasMoreElements())
            return rtl::OUString();
        uno::Reference<uno::XInterface> first;
        paragraphs->nextElement() >>= first;
        return pageStyleOf(first);
    } catch (const lang::IndexOutOfBoundsException &) {
        return rtl::OUString();
    }
}

void ZylTextModel::restoreBreak(const Element &e, const BreakState &before)
{
    // Removing a paragraph hands its break and page style on to what follows it.
    uno::Reference<beans::XPropertySet> props(e.content, uno::UNO_QUERY);
    if (!props.is() || !before.valid)
        return;
    rtl::OUString pageDesc;
    props->getPropertyValue(ou("PageDescName")) >>= pageDesc;
    if (pageDesc != before.pageDesc)
        props->setPropertyValue(ou("PageDescName"), uno::Any(before.pageDesc));
    style::BreakType breakType = style::BreakType_NONE;
    props->getPropertyValue(ou("BreakType")) >>= breakType;
    if (breakType != before.breakType)
        props->setPropertyValue(ou("BreakType"), uno::Any(before.breakType));
    // A page style it only inherited from the pages before is kept explicitly.
    if (!before.layoutStyle.isEmpty() && layoutStyleOf(e) != before.layoutStyle)
        props->setPropertyValue(ou("PageDescName"), uno::Any(before.layoutStyle));
}

HRESULT ZylTextModel::insertPageBreak(LONG position)
{
    placeEndnotes();
    const Layout &l = layout();
    const int point = position <= 0 ? 0 : std::min<int>(int(position) - 1, l.length);
    uno::Reference<text::XTextCursor> cursor = cursorAt(l, point);
    if (!cursor.is())
        return E_INVALIDARG;
    OwnEdit own(*this);
    UndoContext undo(m_document, "Page break");
    const int index = elementAt(l, point);
    touch(index, index + 1);
    if (revealHiddenEnd(l, point)) {
        // The empty paragraph left after a table becomes the new page's first one.
        uno::Reference<beans::XPropertySet> paragraph(l.elements[size_t(index)].content, uno::UNO_QUERY_THROW);
        paragraph->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_PAGE_BEFORE));
        return S_OK;
    }
    m_text->insertControlCharacter(uno::Reference<text::XTextRange>(cursor, uno::UNO_QUERY_THROW), text::ControlCharacter::PARAGRAPH_BREAK, false);
    uno::Reference<beans::XPropertySet> props(cursor, uno::UNO_QUERY_THROW);
    props->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_PAGE_BEFORE));
    return S_OK;
}

HRESULT ZylTextModel::insertParagraph(LONG position)
{
    placeEndnotes();
    const Layout &l = layout();
    const int point = position <= 0 ? 0 : std::min<int>(int(position) - 1, l.length);
    uno::Reference<text::XTextCursor> cursor = cursorAt(l, point);
    if (!cursor.is())
        return E_INVALIDARG;
    OwnEdit own(*this);
    const int index = elementAt(l, point);
    touch(index, index + 1);
    revealHiddenEnd(l, point);
    m_text->insertControlCharacter(uno::Reference<text::XTextRange>(cursor, uno::UNO_QUERY_THROW), text::ControlCharacter::PARAGRAPH_BREAK, false);
    return S_OK;
}

bool ZylTextModel::revealHiddenEnd(const Layout &l, int point)
{
    const int index = elementAt(l, point);
    if (index < 0 || index != int(l.elements.size()) - 1 || l.elements[size_t(index)].isTable
        || l.elements[size_t(index)].length != 0)
        return false;
    uno::Reference<beans::XPropertySet> paragraph(l.elements[size_t(index)].content, uno::UNO_QUERY);
    bool hidden = false;
    if (paragraph.is())
        paragraph->getPropertyValue(ou("CharHidden")) >>= hidden;
    if (!hidden)
        return false;
    paragraph->setPropertyValue(ou("CharHidden"), uno::Any(false));
    return true;
}

HRESULT ZylTextModel::insertFile(LONG position, const QString &url, const Insertion &known)
{
    placeEndnotes();
    const rtl::OUString &firstPageStyle = known.firstPageStyle;
    const Layout before = layout();
    const int point = position <= 0 ? 0 : std::min<int>(int(position) - 1, before.length);
    uno::Reference<text::XTextCursor> cursor = cursorAt(before, point);
    if (!cursor.is())
        return E_INVALIDARG;
    OwnEdit own(*this);
    UndoContext undo(m_document, "Insert file");
    const int at = elementAt(before, point);
    touch(at, at + 1);
    revealHiddenEnd(before, point);
    uno::Reference<document::XDocumentInsertable> insertable(cursor, uno::UNO_QUERY_THROW);
    const std::string utf8 = url.toStdString();
    const int objectsBefore = drawnObjects();
    const QString filter = ZylFilters::insertFilterFor(QUrl(url).toLocalFile());
    const beans::PropertyValue filterName = property("FilterName", uno::Any(toOUString(filter)));
    insertable->insertDocumentFromURL(rtl::OUString::fromUtf8(utf8.c_str()),
                                      filter.isEmpty() ? uno::Sequence<beans::PropertyValue>()
                                                       : uno::Sequence<beans::PropertyValue>(&filterName, 1));
    Layout after = layout();
    // Inserting fails silently (missing, encrypted or unreadable files): judge by the result. A
    // page of pictures only may bring nothing but pictures into the paragraph inserted into.
    const bool textArrived = after.elements.size() != before.elements.size() || after.length != before.length;
    // A document prepared with its page style is known to be readable: nothing from it is an
    // empty page.
    if (!textArrived && drawnObjects() == objectsBefore && firstPageStyle.isEmpty()) {
        qCWarning(lcZylServer) << "nothing was inserted from" << url;
        return E_FAIL;
    }
    // Some formats arrive with a paragraph of their own after the content, others end in the
    // paragraph they were inserted into. Give every insertion that paragraph, so the content
    // ends with its own mark and what followed the insertion point starts a paragraph.
    const int contentEnd = point + (after.length - before.length);
    const int index = elementAt(after, contentEnd);
    const bool emptyLastStartsPage = known.last.empty
        && (known.last.breakType != style::BreakType_NONE || !known.last.pageStyle.isEmpty());
    if (textArrived && emptyLastStartsPage && index > elementAt(after, point) && !after.elements[size_t(index)].isTable
        && after.elements[size_t(index)].length == 0) {
        // An empty last paragraph that starts a page ends where the paragraph inserted into goes
        // on, and would be taken for it, its page with it: it gets a mark of its own.
        touch(index, index + 1);
        m_text->insertControlCharacter(uno::Reference<text::XTextRange>(cursorAt(after, contentEnd), uno::UNO_QUERY_THROW),
                                       text::ControlCharacter::PARAGRAPH_BREAK, false);
        after = layout();
    }
    // Content that ends in a table has no mark of its own either: the paragraph after the table
    // is the one inserted into, and taking a mark from it would take the table's last row.
    const bool endsInTable = index > 0 && after.elements[size_t(index - 1)].isTable;
    // Pictures anchored as characters take no points: a paragraph of only such pictures that
    // seems to begin at the content's end may be the content's last one.
    const bool endsInPictures = index >= 0 && after.elements[size_t(index)].length == 0
        && holdsCharacterPictures(after.elements[size_t(index)].content);
    if (textArrived && index >= 0 && !endsInTable && !after.elements[size_t(index)].isTable && !known.last.style.isEmpty()) {
        uno::Reference<beans::XPropertySet> last(after.elements[size_t(index)].content, uno::UNO_QUERY);
        touch(index, index + 1);
        try {
            if (last.is()) {
                ZylPageStyleImport::setParagraphStyle(last, known.last.style);
                // Its break and list, unless it is the first as well, which starts the content's page below.
                if (index > elementAt(after, point)) {
                    restoreLastBreak(after, index, known.last);
                    joinNeighbourList(after, index, index - 1, known.last);
                }
            }
        } catch (const uno::Exception &) {
            qCWarning(lcZylServer) << "the inserted content's last paragraph keeps the style it arrived with";
        }
    }
    if (index >= 0 && !after.elements[size_t(index)].isTable
        && (after.elements[size_t(index)].base != contentEnd || !textArrived || endsInTable || endsInPictures)) {
        const Element &e = after.elements[size_t(index)];
        uno::Reference<text::XTextCursor> end = cursorAt(after, textArrived ? contentEnd : e.base + e.length);
        touch(index, index + 1);
        if (end.is())
            m_text->insertControlCharacter(uno::Reference<text::XTextRange>(end, uno::UNO_QUERY_THROW), text::ControlCharacter::PARAGRAPH_BREAK, false);
        // That mark is the paragraph the source hid after its table; an empty last paragraph after
        // it is hidden too, as the end mark that joins it when the next source goes in.
        if (endsInTable && known.endsHidden && textArrived) {
            const Layout now = layout();
            for (const Element &e : {now.elements[size_t(index)], now.elements.back()}) {
                uno::Reference<beans::XPropertySet> mark(e.content, uno::UNO_QUERY);
                if (mark.is() && !e.isTable && e.length == 0)
                    mark->setPropertyValue(ou("CharHidden"), uno::Any(true));
            }
        }
    }
    // The paragraph inserted into holds the pictures: it stays.
    if (textArrived) {
        const QString suffix = QFileInfo(QUrl(url).path()).suffix().toLower();
        joinEmptyInsertionParagraph(before, point, suffix == QLatin1String("odt") || suffix == QLatin1String("zyl")
                                        || suffix == QLatin1String("fodt") || suffix == QLatin1String("ott"));
    }
    const int first = elementAt(before, point);
    if (!firstPageStyle.isEmpty() && first >= 0 && before.elements[size_t(first)].base == point) {
        // The .doc format keeps no page style on a table that does not change it: in the style of
        // the page before, a break starts the table's page.
        int start = first;
        const bool breakOnly = known.startsWithTable && dropParagraphBeforeTable(first, firstPageStyle, &start)
            && known.firstNumber == 0;
        // Some formats merge their first paragraph into the one inserted into, which keeps its own
        // attributes: name the style on whatever now starts at the insertion point.
        const Layout now = layout();
        if (start > 0 && size_t(start) <= now.elements.size()) {
            touch(start - 1, start);
            startRunAtBreak(now.elements[size_t(start - 1)]);
        }
        if (size_t(start) < now.elements.size()) {
            uno::Reference<beans::XPropertySet> props(now.elements[size_t(start)].content, uno::UNO_QUERY);
            touch(start, start + 1);
            if (props.is() && breakOnly) {
                props->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_PAGE_BEFORE));
            } else if (props.is()) {
                // The style starts the page; a page break as well is written as a second break in .docx.
                props->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_NONE));
                props->setPropertyValue(ou("PageDescName"), uno::Any(firstPageStyle));
                if (known.firstNumber > 0)
                    props->setPropertyValue(ou("PageNumberOffset"), uno::Any(known.firstNumber));
            }
            if (!known.first.style.isEmpty() && !now.elements[size_t(start)].isTable) {
                try {
                    joinNeighbourList(now, start, start + 1, known.first);
                } catch (const uno::Exception &) {
                    qCWarning(lcZylServer) << "the inserted content's first paragraph is left out of its list";
                }
            }
        }
    }
    return S_OK;
}

void ZylTextModel::restoreLastBreak(const Layout &l, int index, const ZylPageStyleImport::EdgeParagraph &known)
{
    uno::Reference<beans::XPropertySet> last(l.elements[size_t(index)].content, uno::UNO_QUERY_THROW);
    if (!known.pageStyle.isEmpty())
        last->setPropertyValue(ou("PageDescName"), uno::Any(known.pageStyle));
    else if (known.breakType != style::BreakType_NONE)
        last->setPropertyValue(ou("BreakType"), uno::Any(known.breakType));
}

bool ZylTextModel::numbered(const uno::Reference<beans::XPropertySet> &paragraph)
{
    rtl::OUString list;
    return (paragraph->getPropertyValue(ou("NumberingStyleName")) >>= list) && !list.isEmpty();
}

bool ZylTextModel::hasListStyle(const rtl::OUString &name) const
{
    uno::Reference<style::XStyleFamiliesSupplier> families(m_document, uno::UNO_QUERY_THROW);
    uno::Reference<container::XNameAccess> lists(families->getStyleFamilies()->getByName(ou("NumberingStyles")), uno::UNO_QUERY_THROW);
    return lists->hasByName(name);
}

void ZylTextModel::joinNeighbourList(const Layout &l, int index, int neighbour, const ZylPageStyleImport::EdgeParagraph &known)
{
    uno::Reference<beans::XPropertySet> paragraph(l.elements[size_t(index)].content, uno::UNO_QUERY_THROW);
    const uno::Reference<beans::XPropertySet> next(
        neighbour >= 0 && size_t(neighbour) < l.elements.size() && !l.elements[size_t(neighbour)].isTable
            ? l.elements[size_t(neighbour)].content
            : nullptr,
        uno::UNO_QUERY);
    if (known.sharesList && next.is() && numbered(next)) {
        for (const char *name : {"NumberingStyleName", "ListId"})
            paragraph->setPropertyValue(ou(name), next->getPropertyValue(ou(name)));
    } else if (!known.list.isEmpty() && !numbered(paragraph) && hasListStyle(known.list)) {
        // A heading that starts the content, or an item whose neighbour lost its list the same
        // way (a list of two), numbers in its own style's list.
        paragraph->setPropertyValue(ou("NumberingStyleName"), uno::Any(known.list));
    } else {
        return;
    }
    paragraph->setPropertyValue(ou("NumberingLevel"), uno::Any(known.level));
}

int ZylTextModel::drawnObjects()
{
    uno::Reference<drawing::XDrawPageSupplier> supplier(m_document, uno::UNO_QUERY);
    return supplier.is() ? int(supplier->getDrawPage()->getCount()) : 0;
}

bool ZylTextModel::dropParagraphBeforeTable(int index, const rtl::OUString &pageStyle, int *tableIndex)
{
    // The empty paragraph inserted into stays ahead of a table that starts the content and takes a
    // line at the top of the page: the table starts the page itself. Behind another table, which
    // it would join in the Word formats, the paragraph stays, hidden, at the end of the page before.
    *tableIndex = index;
    const Layout now = layout();
    if (index < 1 || size_t(index) + 1 >= now.elements.size())
        return false;
    const Element &empty = now.elements[size_t(index)];
    const Element &before = now.elements[size_t(index) - 1];
    uno::Reference<lang::XComponent> component(empty.content, uno::UNO_QUERY);
    uno::Reference<beans::XPropertySet> paragraph(empty.content, uno::UNO_QUERY);
    uno::Reference<beans::XPropertySet> previous(before.content, uno::UNO_QUERY);
    if (empty.isTable || empty.length != 0 || !now.elements[size_t(index) + 1].isTable
        || holdsCharacterPictures(empty.content) || !component.is() || !paragraph.is() || !previous.is())
        return false;
    rtl::OUString previousStyle;
    previous->getPropertyValue(ou("PageStyleName")) >>= previousStyle;
    touch(index, index + 1);
    if (before.isTable) {
        paragraph->setPropertyValue(ou("PageDescName"), uno::Any(rtl::OUString()));
        paragraph->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_NONE));
        paragraph->setPropertyValue(ou("CharHidden"), uno::Any(true));
        *tableIndex = index + 1;
    } else {
        component->dispose();
    }
    return previousStyle == pageStyle;
}

void ZylTextModel::joinEmptyInsertionParagraph(const Layout &before, int point, bool openDocument)
{
    // Some formats start their content in a paragraph of their own and leave the empty one the
    // insertion was made into ahead of it. Its break would start a page of its own when the
    // content begins with a page break too, so the content's first paragraph takes its place.
    // OpenDocument content starts in the paragraph inserted into, so an empty one there is the
    // content's own, unless the content opens with a section, which cannot start inside it.
    const int index = elementAt(before, point);
    if (index < 0 || before.elements[size_t(index)].isTable || before.elements[size_t(index)].length != 0)
        return;
    const Layout now = layout();
    if (size_t(index) + 1 >= now.elements.size())
        return;
    const Element &empty = now.elements[size_t(index)];
    const Element &first = now.elements[size_t(index) + 1];
    if (empty.isTable || empty.length != 0 || first.isTable)
        return;
    uno::Reference<beans::XPropertySet> emptyProps(empty.content, uno::UNO_QUERY);
    uno::Reference<beans::XPropertySet> firstProps(first.content, uno::UNO_QUERY);
    uno::Reference<lang::XComponent> component(empty.content, uno::UNO_QUERY);
    if (!emptyProps.is() || !firstProps.is() || !component.is())
        return;
    rtl::OUString emptyDesc, firstDesc;
    style::BreakType emptyBreak = style::BreakType_NONE, firstBreak = style::BreakType_NONE;
    if (openDocument) {
        uno::Reference<lang::XComponent> emptySection, firstSection;
        emptyProps->getPropertyValue(ou("TextSection")) >>= emptySection;
        firstProps->getPropertyValue(ou("TextSection")) >>= firstSection;
        if (!firstSection.is() || firstSection == emptySection)
            return;
    }
    emptyProps->getPropertyValue(ou("PageDescName")) >>= emptyDesc;
    emptyProps->getPropertyValue(ou("BreakType")) >>= emptyBreak;
    firstProps->getPropertyValue(ou("PageDescName")) >>= firstDesc;
    firstProps->getPropertyValue(ou("BreakType")) >>= firstBreak;
    touch(index, index + 1);
    component->dispose();
    if (layout().elements.size() != now.elements.size() - 1) {
        qCWarning(lcZylServer) << "the empty paragraph before inserted content stays";
        return;
    }
    if (firstDesc.isEmpty() && !emptyDesc.isEmpty())
        firstProps->setPropertyValue(ou("PageDescName"), uno::Any(emptyDesc));
    else if (firstDesc.isEmpty() && firstBreak == style::BreakType_NONE && emptyBreak != style::BreakType_NONE)
        firstProps->setPropertyValue(ou("BreakType"), uno::Any(emptyBreak));
}
