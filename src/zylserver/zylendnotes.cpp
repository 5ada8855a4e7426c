#include "zylendnotes.h"
#include <vector>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/datatransfer/XTransferable.hpp>
#include <com/sun/star/datatransfer/XTransferableSupplier.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/text/ControlCharacter.hpp>
#include <com/sun/star/text/XEndnotesSupplier.hpp>
#include <com/sun/star/text/XFootnote.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextCursor.hpp>
#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/text/XTextSectionsSupplier.hpp>
#include <com/sun/star/text/XTextViewCursorSupplier.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>
#include "zyllog.h"
#include "zyluno.h"

using namespace css;

namespace {

bool collectedInSections(const uno::Reference<frame::XModel> &document)
{
    uno::Reference<text::XTextSectionsSupplier> supplier(document, uno::UNO_QUERY);
    const uno::Reference<container::XIndexAccess> sections(supplier.is() ? supplier->getTextSections() : nullptr,
                                                           uno::UNO_QUERY);
    for (sal_Int32 i = 0; sections.is() && i < sections->getCount(); ++i) {
        uno::Reference<beans::XPropertySet> section(sections->getByIndex(i), uno::UNO_QUERY);
        bool collected = false;
        if (section.is() && (section->getPropertyValue(ou("EndnoteIsCollectAtTextEnd")) >>= collected) && collected)
            return true;
    }
    return false;
}

rtl::OUString firstParagraphStyle(const uno::Reference<text::XFootnote> &note)
{
    uno::Reference<container::XEnumerationAccess> paragraphs(note, uno::UNO_QUERY);
    const uno::Reference<container::XEnumeration> all = paragraphs.is() ? paragraphs->createEnumeration() : nullptr;
    uno::Reference<beans::XPropertySet> first(all.is() && all->hasMoreElements() ? all->nextElement() : uno::Any(),
                                              uno::UNO_QUERY);
    rtl::OUString style;
    if (first.is())
        first->getPropertyValue(ou("ParaStyleName")) >>= style;
    return style;
}

} // namespace

bool ZylEndnotes::printInPlace(const uno::Reference<frame::XModel> &document)
{
    uno::Reference<text::XEndnotesSupplier> supplier(document, uno::UNO_QUERY);
    uno::Reference<text::XTextDocument> textDocument(document, uno::UNO_QUERY);
    const uno::Reference<container::XIndexAccess> endnotes = supplier.is() ? supplier->getEndnotes() : nullptr;
    if (!endnotes.is() || !textDocument.is() || endnotes->getCount() == 0 || collectedInSections(document))
        return false;
    const uno::Reference<frame::XController> controller = document->getCurrentController();
    uno::Reference<view::XSelectionSupplier> selection(controller, uno::UNO_QUERY);
    uno::Reference<datatransfer::XTransferableSupplier> clipboard(controller, uno::UNO_QUERY);
    uno::Reference<text::XTextViewCursorSupplier> view(controller, uno::UNO_QUERY);
    if (!selection.is() || !clipboard.is() || !view.is())
        return false;
    // With changes recorded, every edit below would be one more change.
    uno::Reference<beans::XPropertySet>(document, uno::UNO_QUERY_THROW)->setPropertyValue(ou("RecordChanges"), uno::Any(false));

    const uno::Reference<beans::XPropertySet> settings = supplier->getEndnoteSettings();
    rtl::OUString pageStyle, labelStyle, anchorStyle;
    settings->getPropertyValue(ou("PageStyleName")) >>= pageStyle;
    settings->getPropertyValue(ou("CharStyleName")) >>= labelStyle;
    settings->getPropertyValue(ou("AnchorCharStyleName")) >>= anchorStyle;
    // Numbers as they print, before any endnote goes and the rest count anew; and each note's
    // text, with its formatting, tables and pictures, as a copy takes it. All is read before
    // anything changes, so that a note that cannot be read leaves the document as it was.
    struct Note {
        uno::Reference<text::XFootnote> note;
        rtl::OUString label;
        rtl::OUString style;
        uno::Reference<datatransfer::XTransferable> content;
    };
    std::vector<Note> notes;
    for (sal_Int32 i = 0; i < endnotes->getCount(); ++i) {
        Note n;
        n.note.set(endnotes->getByIndex(i), uno::UNO_QUERY_THROW);
        n.label = n.note->getAnchor()->getString();
        n.style = firstParagraphStyle(n.note);
        const uno::Reference<text::XTextCursor> content =
            uno::Reference<text::XText>(n.note, uno::UNO_QUERY_THROW)->createTextCursor();
        content->gotoStart(false);
        content->gotoEnd(true);
        if (!selection->select(uno::Any(content)))
            throw uno::RuntimeException(ou("an endnote cannot be selected"));
        n.content = clipboard->getTransferable();
        notes.push_back(n);
    }

    const uno::Reference<text::XText> body = textDocument->getText();
    for (size_t i = 0; i < notes.size(); ++i) {
        body->insertControlCharacter(body->getEnd(), text::ControlCharacter::PARAGRAPH_BREAK, false);
        const uno::Reference<text::XTextCursor> end = body->createTextCursorByRange(body->getEnd());
        uno::Reference<beans::XPropertySet> paragraph(end, uno::UNO_QUERY_THROW);
        if (!notes[i].style.isEmpty())
            paragraph->setPropertyValue(ou("ParaStyleName"), uno::Any(notes[i].style));
        if (i == 0 && !pageStyle.isEmpty())
            paragraph->setPropertyValue(ou("PageDescName"), uno::Any(pageStyle));
        end->setString(notes[i].label);
        if (!labelStyle.isEmpty())
            paragraph->setPropertyValue(ou("CharStyleName"), uno::Any(labelStyle));
        body->insertString(body->getEnd(), ou("\t"), false);
        view->getViewCursor()->gotoRange(body->getEnd(), false);
        clipboard->insertTransferable(notes[i].content);
    }
    for (const Note &n : notes) {
        const uno::Reference<text::XTextRange> anchor = n.note->getAnchor();
        const uno::Reference<text::XText> text = anchor->getText();
        const uno::Reference<text::XTextCursor> number = text->createTextCursorByRange(anchor->getStart());
        number->setString(n.label);
        if (!anchorStyle.isEmpty())
            uno::Reference<beans::XPropertySet>(number, uno::UNO_QUERY_THROW)->setPropertyValue(ou("CharStyleName"), uno::Any(anchorStyle));
        text->removeTextContent(uno::Reference<text::XTextContent>(n.note, uno::UNO_QUERY_THROW));
    }
    qCDebug(lcZylServer) << notes.size() << "endnotes made text where they print";
    return true;
}
