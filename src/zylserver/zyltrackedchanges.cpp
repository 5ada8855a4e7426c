#include "zyltrackedchanges.h"

#include <atomic>

#include <QCoreApplication>
#include <cppuhelper/implbase1.hxx>

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/XRedlinesSupplier.hpp>
#include <com/sun/star/frame/DispatchHelper.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/frame/XDispatch.hpp>
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <com/sun/star/frame/XFrame.hpp>
#include <com/sun/star/frame/XStatusListener.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/text/XBookmarksSupplier.hpp>
#include <com/sun/star/text/XRedline.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextContent.hpp>
#include <com/sun/star/text/XTextCursor.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/util/URL.hpp>
#include <com/sun/star/util/URLTransformer.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>

#include "zyllog.h"
#include "zyluno.h"

using namespace css;

namespace {

std::vector<uno::Reference<beans::XPropertySet>> changesOf(const uno::Reference<frame::XModel> &document)
{
    std::vector<uno::Reference<beans::XPropertySet>> changes;
    uno::Reference<document::XRedlinesSupplier> supplier(document, uno::UNO_QUERY);
    if (!supplier.is())
        return changes;
    const uno::Reference<container::XEnumeration> all = supplier->getRedlines()->createEnumeration();
    while (all->hasMoreElements())
        changes.emplace_back(all->nextElement(), uno::UNO_QUERY);
    return changes;
}

// The kinds of change the office can make again over a range of text.
bool isCarried(const rtl::OUString &type)
{
    return type == "Insert" || type == "Delete" || type == "Format" || type == "ParagraphFormat";
}

const char *const kShowChanges = ".uno:ShowTrackedChanges";

class StateListener : public cppu::WeakImplHelper1<frame::XStatusListener> {
public:
    void SAL_CALL statusChanged(const frame::FeatureStateEvent &event) override { event.State >>= shown; }
    void SAL_CALL disposing(const lang::EventObject &) override {}
    bool shown = true;
};

// Whether the document shows its tracked changes, or hides them as if they were accepted.
bool changesShown(const uno::Reference<uno::XComponentContext> &context, const uno::Reference<frame::XModel> &document)
{
    const uno::Reference<frame::XController> controller = document->getCurrentController();
    uno::Reference<frame::XDispatchProvider> provider(controller.is() ? controller->getFrame() : nullptr, uno::UNO_QUERY);
    if (!provider.is())
        return true;
    util::URL url;
    url.Complete = ou(kShowChanges);
    util::URLTransformer::create(context)->parseStrict(url);
    const uno::Reference<frame::XDispatch> dispatch = provider->queryDispatch(url, rtl::OUString(), 0);
    if (!dispatch.is())
        return true;
    // The state arrives as the listener is added.
    auto *state = new StateListener;
    const uno::Reference<frame::XStatusListener> listener(state);
    dispatch->addStatusListener(listener, url);
    dispatch->removeStatusListener(listener, url);
    return state->shown;
}

} // namespace

bool ZylTrackedChanges::hasChanges(const uno::Reference<frame::XModel> &document)
{
    uno::Reference<document::XRedlinesSupplier> supplier(document, uno::UNO_QUERY);
    return supplier.is() && supplier->getRedlines()->hasElements();
}

bool ZylTrackedChanges::mark(const uno::Reference<uno::XComponentContext> &context,
                             const uno::Reference<frame::XModel> &document)
{
    m_changes.clear();
    const uno::Reference<frame::XController> controller = document->getCurrentController();
    uno::Reference<view::XSelectionSupplier> selection(controller, uno::UNO_QUERY);
    uno::Reference<frame::XDispatchProvider> dispatcher(controller.is() ? controller->getFrame() : nullptr, uno::UNO_QUERY);
    uno::Reference<lang::XMultiServiceFactory> factory(document, uno::UNO_QUERY);
    if (!context.is() || !selection.is() || !dispatcher.is() || !factory.is())
        return false;
    // Names that no document has, however many are merged.
    static std::atomic<unsigned> batch{0};
    const QString prefix = QStringLiteral("__vzyl_change_%1_%2_").arg(QCoreApplication::applicationPid()).arg(++batch);
    std::vector<uno::Reference<text::XTextContent>> deletions;
    for (const auto &change : changesOf(document)) {
        Change carried;
        bool inHeaderOrFooter = false;
        change->getPropertyValue(ou("RedlineType")) >>= carried.type;
        change->getPropertyValue(ou("IsInHeaderFooter")) >>= inHeaderOrFooter;
        if (!isCarried(carried.type) || inHeaderOrFooter)
            continue;
        change->getPropertyValue(ou("RedlineAuthor")) >>= carried.author;
        change->getPropertyValue(ou("RedlineComment")) >>= carried.comment;
        change->getPropertyValue(ou("RedlineDateTime")) >>= carried.time;
        uno::Reference<text::XTextRange> start(change->getPropertyValue(ou("RedlineStart")), uno::UNO_QUERY);
        uno::Reference<text::XTextRange> end(change->getPropertyValue(ou("RedlineEnd")), uno::UNO_QUERY);
        if (!start.is() || !end.is())
            continue;
        try {
            const uno::Reference<text::XText> text = start->getText();
            const uno::Reference<text::XTextCursor> span = text->createTextCursorByRange(start);
            span->gotoRange(end, true);
            carried.bookmark = toOUString(prefix + QString::number(m_changes.size()));
            uno::Reference<text::XTextContent> bookmark(factory->createInstance(ou("com.sun.star.text.Bookmark")),
                                                        uno::UNO_QUERY_THROW);
            uno::Reference<container::XNamed>(bookmark, uno::UNO_QUERY_THROW)->setName(carried.bookmark);
            text->insertTextContent(uno::Reference<text::XTextRange>(span, uno::UNO_QUERY_THROW), bookmark, true);
            if (carried.type == "Delete")
                deletions.push_back(bookmark);
            m_changes.push_back(carried);
        } catch (const uno::Exception &) {
            // A change across texts (from a table into the body, say) is applied like the rest.
        }
    }
    if (m_changes.empty())
        return false;
    m_context = context;
    m_hidden = !changesShown(context, document);
    // A deletion rejected keeps its text; everything accepted then keeps the rest.
    const uno::Reference<frame::XDispatchHelper> helper = frame::DispatchHelper::create(context);
    for (const auto &bookmark : deletions) {
        if (selection->select(uno::Any(bookmark->getAnchor())))
            helper->executeDispatch(dispatcher, ou(".uno:RejectTrackedChange"), rtl::OUString(), 0, {});
    }
    helper->executeDispatch(dispatcher, ou(".uno:AcceptAllTrackedChanges"), rtl::OUString(), 0, {});
    qCDebug(lcZylServer) << m_changes.size() << "tracked changes marked to be carried over";
    return true;
}

void ZylTrackedChanges::restore(const uno::Reference<text::XTextDocument> &target) const
{
    uno::Reference<text::XBookmarksSupplier> supplier(target, uno::UNO_QUERY);
    if (m_changes.empty() || !supplier.is())
        return;
    const uno::Reference<container::XNameAccess> bookmarks = supplier->getBookmarks();
    const uno::Reference<frame::XModel> model(target, uno::UNO_QUERY);
    const bool targetHasOwn = model.is() && hasChanges(model);
    int restored = 0;
    for (const Change &change : m_changes) {
        if (!bookmarks->hasByName(change.bookmark))
            continue;
        uno::Reference<text::XTextContent> bookmark(bookmarks->getByName(change.bookmark), uno::UNO_QUERY);
        try {
            const uno::Reference<text::XTextRange> anchor = bookmark->getAnchor();
            uno::Reference<text::XRedline> range(anchor->getText()->createTextCursorByRange(anchor), uno::UNO_QUERY_THROW);
            const beans::PropertyValue values[] = {property("RedlineAuthor", uno::Any(change.author)),
                                                   property("RedlineDateTime", uno::Any(change.time)),
                                                   property("RedlineComment", uno::Any(change.comment))};
            range->makeRedline(change.type, uno::Sequence<beans::PropertyValue>(values, 3));
            ++restored;
        } catch (const uno::Exception &) {
        }
        uno::Reference<lang::XComponent> mark(bookmark, uno::UNO_QUERY);
        if (mark.is())
            mark->dispose();
    }
    // A target without changes of its own shows them as the source did, so its pages keep their text.
    if (m_hidden && restored > 0 && !targetHasOwn && m_context.is()) {
        const uno::Reference<frame::XController> controller = model->getCurrentController();
        uno::Reference<frame::XDispatchProvider> dispatcher(controller.is() ? controller->getFrame() : nullptr, uno::UNO_QUERY);
        if (dispatcher.is() && changesShown(m_context, model)) {
            const beans::PropertyValue hide = property("ShowTrackedChanges", uno::Any(false));
            frame::DispatchHelper::create(m_context)
                ->executeDispatch(dispatcher, ou(kShowChanges), rtl::OUString(), 0, uno::Sequence<beans::PropertyValue>(&hide, 1));
        }
    }
    if (restored != int(m_changes.size()))
        qCInfo(lcZylServer) << restored << "of" << m_changes.size() << "tracked changes carried over";
}
