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

std::set<rtl::OUString> namesOf(const uno::Reference<container::XNameAccess> &names)
{
    const uno::Sequence<rtl::OUString> all = names->getElementNames();
    return std::set<rtl::OUString>(all.begin(), all.end());
}

std::set<sal_Int16> idsOf(const uno::Reference<container::XIndexAccess> &notes)
{
    std::set<sal_Int16> ids;
    for (sal_Int32 i = 0; notes.is() && i < notes->getCount(); ++i) {
        uno::Reference<beans::XPropertySet> note(notes->getByIndex(i), uno::UNO_QUERY);
        sal_Int16 id = -1;
        if (note.is() && (note->getPropertyValue(ou("ReferenceId")) >>= id))
            ids.insert(id);
    }
    return ids;
}

} // namespace

ZylReferences::ZylReferences(const uno::Reference<text::XTextDocument> &document) : m_document(document)
{
    try {
        const auto references = fieldsOf(document, "com.sun.star.text.TextField.GetReference");
        if (references.empty())
            return;
        const Targets before = targets();
        // Wherever they are: in tables and frames, and in headers, where an orphan would show an
        // error on every page that stays. One whose target is missing already keeps the text the
        // file stored for it.
        for (const auto &field : references) {
            uno::Reference<beans::XPropertySet> props(field, uno::UNO_QUERY_THROW);
            Noted noted;
            noted.field = field;
            props->getPropertyValue(ou("ReferenceFieldSource")) >>= noted.source;
            props->getPropertyValue(ou("SequenceNumber")) >>= noted.number;
            props->getPropertyValue(ou("SourceName")) >>= noted.name;
            if (!exists(noted, before))
                continue;
            noted.text = field->getPresentation(false);
            m_noted.push_back(std::move(noted));
        }
    } catch (const uno::Exception &) {
        m_noted.clear();
    }
}

ZylReferences::Targets ZylReferences::targets() const
{
    Targets t;
    t.bookmarks = namesOf(uno::Reference<text::XBookmarksSupplier>(m_document, uno::UNO_QUERY_THROW)->getBookmarks());
    t.marks = namesOf(uno::Reference<text::XReferenceMarksSupplier>(m_document, uno::UNO_QUERY_THROW)->getReferenceMarks());
    t.footnotes = idsOf(uno::Reference<text::XFootnotesSupplier>(m_document, uno::UNO_QUERY_THROW)->getFootnotes());
    t.endnotes = idsOf(uno::Reference<text::XEndnotesSupplier>(m_document, uno::UNO_QUERY_THROW)->getEndnotes());
    for (const auto &sequence : fieldsOf(m_document, "com.sun.star.text.TextField.SetExpression")) {
        uno::Reference<beans::XPropertySet> values(sequence, uno::UNO_QUERY);
        uno::Reference<text::XDependentTextField> dependent(sequence, uno::UNO_QUERY);
        sal_Int16 value = -1;
        rtl::OUString master;
        if (values.is() && dependent.is() && dependent->getTextFieldMaster().is())
            dependent->getTextFieldMaster()->getPropertyValue(ou("Name")) >>= master;
        if (values.is() && (values->getPropertyValue(ou("SequenceValue")) >>= value))
            t.sequences.emplace(master, value);
    }
    return t;
}

bool ZylReferences::exists(const Noted &reference, const Targets &targets)
{
    switch (reference.source) {
    case text::ReferenceFieldSource::BOOKMARK:
        return targets.bookmarks.count(reference.name) > 0;
    case text::ReferenceFieldSource::REFERENCE_MARK:
        return targets.marks.count(reference.name) > 0;
    case text::ReferenceFieldSource::FOOTNOTE:
        return targets.footnotes.count(reference.number) > 0;
    case text::ReferenceFieldSource::ENDNOTE:
        return targets.endnotes.count(reference.number) > 0;
    case text::ReferenceFieldSource::SEQUENCE_FIELD:
        return targets.sequences.count({reference.name, reference.number}) > 0;
    default:
        return true;
    }
}

void ZylReferences::keepOrphanedTexts() const
{
    if (m_noted.empty())
        return;
    Targets after;
    // What went with the cut waits in the undo steps, where a field would still answer for its
    // anchor; only the document's fields are listed.
    std::set<const void *> staying;
    try {
        after = targets();
        for (const auto &field : fieldsOf(m_document, "com.sun.star.text.TextField.GetReference"))
            staying.insert(uno::Reference<uno::XInterface>(field, uno::UNO_QUERY).get());
    } catch (const uno::Exception &) {
        return;
    }
    for (const Noted &noted : m_noted) {
        if (!staying.count(uno::Reference<uno::XInterface>(noted.field, uno::UNO_QUERY).get()) || exists(noted, after))
            continue;
        try {
            const uno::Reference<text::XTextRange> anchor = noted.field->getAnchor();
            const uno::Reference<text::XText> text = anchor.is() ? anchor->getText() : nullptr;
            if (!text.is())
                continue;
            text->insertString(anchor->getStart(), noted.text, false);
            text->removeTextContent(uno::Reference<text::XTextContent>(noted.field, uno::UNO_QUERY_THROW));
        } catch (const uno::Exception &) {
        }
    }
}
