#include "zylreferences.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/text/ReferenceFieldSource.hpp>
#include <com/sun/star/text/XBookmarksSupplier.hpp>
#include <com/sun/star/text/XDependentTextField.hpp>
#include <com/sun/star/text/XEndnotesSupplier.hpp>
#include <com/sun/star/text/XFootnotesSupplier.hpp>
#include <com/sun/star/text/XReferenceMarksSupplier.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextFieldsSupplier.hpp>

#include "zyluno.h"

using namespace css;

namespace {

std::vector<uno::Reference<text::XTextField>> fieldsOf(const uno::Reference<text::XTextDocument> &document,
                                                       const char *service)
{
    std::vector<uno::Reference<text::XTextField>> found;
    uno::Reference<text::XTextFieldsSupplier> supplier(document, uno::UNO_QUERY);
    if (!supplier.is())
        return found;
    const uno::Reference<container::XEnumeration> all = supplier->getTextFields()->createEnumeration();
    while (all->hasMoreElements()) {
        uno::Reference<lang::XServiceInfo> info(all->nextElement(), uno::UNO_QUERY);
        uno::Reference<text::XTextField> field(info, uno::UNO_QUERY);
        if (field.is() && info->supportsService(ou(service)))
            found.push_back(field);
    }
    return found;
}

bool hasNote(const uno::Reference<container::XIndexAccess> &notes, sal_Int16 id)
{
    for (sal_Int32 i = 0; notes.is() && i < notes->getCount(); ++i) {
        uno::Reference<beans::XPropertySet> note(notes->getByIndex(i), uno::UNO_QUERY);
        sal_Int16 noteId = -1;
        if (note.is() && (note->getPropertyValue(ou("ReferenceId")) >>= noteId) && noteId == id)
            return true;
    }
    return false;
}

} // namespace

ZylReferences::ZylReferences(const uno::Reference<text::XTextDocument> &document) : m_document(document)
{
    try {
        // Wherever they are: in tables and frames, and in headers, where an orphan would show an
        // error on every page that stays. One whose target is missing already keeps the text the
        // file stored for it.
        for (const auto &field : fieldsOf(document, "com.sun.star.text.TextField.GetReference")) {
            if (targetExists(field))
                m_noted.push_back({field, field->getPresentation(false)});
        }
    } catch (const uno::Exception &) {
        m_noted.clear();
    }
}

bool ZylReferences::targetExists(const uno::Reference<text::XTextField> &field) const
{
    uno::Reference<beans::XPropertySet> props(field, uno::UNO_QUERY_THROW);
    sal_Int16 source = 0;
    sal_Int16 number = 0;
    rtl::OUString name;
    props->getPropertyValue(ou("ReferenceFieldSource")) >>= source;
    props->getPropertyValue(ou("SequenceNumber")) >>= number;
    props->getPropertyValue(ou("SourceName")) >>= name;
    using Bookmarks = text::XBookmarksSupplier;
    using Marks = text::XReferenceMarksSupplier;
    using Footnotes = text::XFootnotesSupplier;
    using Endnotes = text::XEndnotesSupplier;
    switch (source) {
    case text::ReferenceFieldSource::BOOKMARK:
        return uno::Reference<Bookmarks>(m_document, uno::UNO_QUERY_THROW)->getBookmarks()->hasByName(name);
    case text::ReferenceFieldSource::REFERENCE_MARK:
        return uno::Reference<Marks>(m_document, uno::UNO_QUERY_THROW)->getReferenceMarks()->hasByName(name);
    case text::ReferenceFieldSource::FOOTNOTE:
        return hasNote(uno::Reference<Footnotes>(m_document, uno::UNO_QUERY_THROW)->getFootnotes(), number);
    case text::ReferenceFieldSource::ENDNOTE:
        return hasNote(uno::Reference<Endnotes>(m_document, uno::UNO_QUERY_THROW)->getEndnotes(), number);
    case text::ReferenceFieldSource::SEQUENCE_FIELD:
        for (const auto &sequence : fieldsOf(m_document, "com.sun.star.text.TextField.SetExpression")) {
            uno::Reference<beans::XPropertySet> values(sequence, uno::UNO_QUERY);
            uno::Reference<text::XDependentTextField> dependent(sequence, uno::UNO_QUERY);
            sal_Int16 value = -1;
            rtl::OUString master;
            if (values.is() && dependent.is() && dependent->getTextFieldMaster().is())
                dependent->getTextFieldMaster()->getPropertyValue(ou("Name")) >>= master;
            if (values.is() && (values->getPropertyValue(ou("SequenceValue")) >>= value) && value == number
                && master == name)
                return true;
        }
        return false;
    default:
        return true;
    }
}

void ZylReferences::keepOrphanedTexts() const
{
    for (const Noted &noted : m_noted) {
        try {
            // A field that went with the cut has no anchor any more.
            const uno::Reference<text::XTextRange> anchor = noted.field->getAnchor();
            if (!anchor.is() || targetExists(noted.field))
                continue;
            const uno::Reference<text::XText> text = anchor->getText();
            if (!text.is())
                continue;
            text->insertString(anchor->getStart(), noted.text, false);
            text->removeTextContent(uno::Reference<text::XTextContent>(noted.field, uno::UNO_QUERY_THROW));
        } catch (const uno::Exception &) {
        }
    }
}
