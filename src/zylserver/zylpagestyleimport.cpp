#include "zylpagestyleimport.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QUrl>

#include <com/sun/star/beans/Property.hpp>
#include <com/sun/star/beans/PropertyAttribute.hpp>
#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/beans/XMultiPropertySet.hpp>
#include <com/sun/star/beans/XPropertyState.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XIndexReplace.hpp>
#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/document/MacroExecMode.hpp>
#include <com/sun/star/document/UpdateDocMode.hpp>
#include <com/sun/star/document/XStorageBasedDocument.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/drawing/XDrawPageSupplier.hpp>
#include <com/sun/star/embed/XStorage.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/graphic/GraphicProvider.hpp>
#include <com/sun/star/graphic/XGraphic.hpp>
#include <com/sun/star/io/SequenceInputStream.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/style/BreakType.hpp>
#include <com/sun/star/style/PageStyleLayout.hpp>
#include <com/sun/star/style/XStyle.hpp>
#include <com/sun/star/style/XStyleFamiliesSupplier.hpp>
#include <com/sun/star/task/XInteractionHandler.hpp>
#include <com/sun/star/text/TextGridMode.hpp>
#include <com/sun/star/text/XChapterNumberingSupplier.hpp>
#include <com/sun/star/text/XFormField.hpp>
#include <com/sun/star/text/XPageCursor.hpp>
#include <com/sun/star/text/XParagraphCursor.hpp>
#include <com/sun/star/text/XTextContent.hpp>
#include <com/sun/star/text/XTextGraphicObjectsSupplier.hpp>
#include <com/sun/star/text/XTextCopy.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/text/XTextTable.hpp>
#include <com/sun/star/text/XTextViewCursorSupplier.hpp>

#include "zyldocinfofields.h"
#include "zylendnotes.h"
#include "zylfilters.h"
#include "zylinteractionhandler.h"
#include "zyllog.h"
#include "zylsession.h"
#include "zyltextboxes.h"
#include "zyluno.h"

using namespace css;

namespace {

uno::Reference<container::XNameContainer> pageStyles(const uno::Reference<uno::XInterface> &document)
{
    uno::Reference<style::XStyleFamiliesSupplier> supplier(document, uno::UNO_QUERY_THROW);
    return uno::Reference<container::XNameContainer>(supplier->getStyleFamilies()->getByName(ou("PageStyles")),
                                                     uno::UNO_QUERY_THROW);
}

rtl::OUString stringProperty(const uno::Reference<beans::XPropertySet> &props, const char *name)
{
    rtl::OUString value;
    try {
        props->getPropertyValue(ou(name)) >>= value;
    } catch (const uno::Exception &) {
    }
    return value;
}

std::vector<rtl::OUString> writableNames(const uno::Reference<beans::XPropertySet> &props,
                                         const std::set<rtl::OUString> &skipped)
{
    std::vector<rtl::OUString> names;
    for (const beans::Property &p : props->getPropertySetInfo()->getProperties()) {
        if (!(p.Attributes & beans::PropertyAttribute::READONLY) && !skipped.count(p.Name))
            names.push_back(p.Name);
    }
    return names;
}

// All values in one call where the office takes it: a call per property costs a round trip, and
// a reformat of the document when setting.
bool bulkValues(const uno::Reference<beans::XPropertySet> &props, const std::vector<rtl::OUString> &names,
                uno::Sequence<uno::Any> *values)
{
    uno::Reference<beans::XMultiPropertySet> bulk(props, uno::UNO_QUERY);
    if (!bulk.is())
        return false;
    try {
        *values = bulk->getPropertyValues(uno::Sequence<rtl::OUString>(names.data(), sal_Int32(names.size())));
        return values->getLength() == sal_Int32(names.size());
    } catch (const uno::Exception &) {
        return false;
    }
}

// Copies every writable property but the skipped ones.
void copyProperties(const uno::Reference<beans::XPropertySet> &from, const uno::Reference<beans::XPropertySet> &to,
                    const std::set<rtl::OUString> &skipped)
{
    const std::vector<rtl::OUString> names = writableNames(from, skipped);
    uno::Sequence<uno::Any> values;
    uno::Reference<beans::XMultiPropertySet> bulkTo(to, uno::UNO_QUERY);
    if (bulkTo.is() && bulkValues(from, names, &values)) {
        // No value or an empty style name means none, which the office refuses to be told; the
        // copy has none already.
        std::vector<rtl::OUString> setNames;
        std::vector<uno::Any> setValues;
        for (sal_Int32 i = 0; i < values.getLength(); ++i) {
            rtl::OUString text;
            if (!values[i].hasValue() || ((values[i] >>= text) && text.isEmpty()))
                continue;
            setNames.push_back(names[size_t(i)]);
            setValues.push_back(values[i]);
        }
        try {
            bulkTo->setPropertyValues(uno::Sequence<rtl::OUString>(setNames.data(), sal_Int32(setNames.size())),
                                      uno::Sequence<uno::Any>(setValues.data(), sal_Int32(setValues.size())));
            return;
        } catch (const uno::Exception &e) {
            // One property that does not apply in this state spoils the whole call.
            qCDebug(lcZylServer) << "copying a style property by property:" << toQString(e.Message);
        }
    }
    for (const rtl::OUString &name : names) {
        try {
            to->setPropertyValue(name, from->getPropertyValue(name));
        } catch (const uno::Exception &) {
            // Properties that do not apply in this state (a left header of a shared style).
        }
    }
}

// Whether two styles define the same values. Objects (header texts) are left to the caller;
// anything that cannot be read counts as a difference.
bool sameProperties(const uno::Reference<beans::XPropertySet> &a, const uno::Reference<beans::XPropertySet> &b,
                    const std::set<rtl::OUString> &skipped)
{
    const std::vector<rtl::OUString> names = writableNames(a, skipped);
    uno::Sequence<uno::Any> first, second;
    if (!bulkValues(a, names, &first) || !bulkValues(b, names, &second))
        return false;
    for (sal_Int32 i = 0; i < first.getLength(); ++i) {
        if (first[i].getValueTypeClass() != uno::TypeClass_INTERFACE && first[i] != second[i])
            return false;
    }
    return true;
}

const char *const kHeaderFooterTexts[] = {"HeaderText", "HeaderTextLeft", "HeaderTextRight", "HeaderTextFirst",
                                          "FooterText", "FooterTextLeft", "FooterTextRight", "FooterTextFirst"};

const std::set<rtl::OUString> &pageStyleLinks()
{
    static const std::set<rtl::OUString> names = {ou("FollowStyle"), ou("DisplayName")};
    return names;
}

// A source's page style that the target has under its name, with the same values and header and
// footer texts, needs no copy of its own.
bool samePageStyle(const uno::Reference<beans::XPropertySet> &a, const uno::Reference<beans::XPropertySet> &b)
{
    // A text grid that is off lays out nothing, and a save and load changes its values.
    std::set<rtl::OUString> skipped = pageStyleLinks();
    sal_Int16 gridA = -1, gridB = -1;
    try {
        a->getPropertyValue(ou("GridMode")) >>= gridA;
        b->getPropertyValue(ou("GridMode")) >>= gridB;
    } catch (const uno::Exception &) {
    }
    if (gridA == text::TextGridMode::NONE && gridB == text::TextGridMode::NONE) {
        for (const beans::Property &p : a->getPropertySetInfo()->getProperties()) {
            if (p.Name.startsWith("Grid"))
                skipped.insert(p.Name);
        }
    }
    if (!sameProperties(a, b, skipped))
        return false;
    for (const char *name : kHeaderFooterTexts) {
        try {
            uno::Reference<text::XTextRange> x(a->getPropertyValue(ou(name)), uno::UNO_QUERY);
            uno::Reference<text::XTextRange> y(b->getPropertyValue(ou(name)), uno::UNO_QUERY);
            if (x.is() != y.is() || (x.is() && x->getString() != y->getString()))
                return false;
        } catch (const uno::Exception &) {
            // Not there while the header or footer is off, in both alike as the switches agree.
        }
    }
    return true;
}

// Everything a page style says, headers and footers with their text included. Switches go first:
// the header and footer properties exist only while they are on.
void copyPageStyle(const uno::Reference<beans::XPropertySet> &from, const uno::Reference<beans::XPropertySet> &to)
{
    static const char *const switches[] = {"HeaderIsOn", "FooterIsOn", "HeaderIsShared", "FooterIsShared",
                                           "FirstIsShared"};
    for (const char *name : switches) {
        try {
            to->setPropertyValue(ou(name), from->getPropertyValue(ou(name)));
        } catch (const uno::Exception &) {
        }
    }
    copyProperties(from, to, pageStyleLinks());
    // Shared variants are one text under several names, and copying adds to what is there.
    std::vector<uno::Reference<text::XTextCopy>> filled;
    for (const char *name : kHeaderFooterTexts) {
        try {
            uno::Reference<text::XTextCopy> source(from->getPropertyValue(ou(name)), uno::UNO_QUERY);
            uno::Reference<text::XTextCopy> target(to->getPropertyValue(ou(name)), uno::UNO_QUERY);
            if (!source.is() || !target.is() || std::find(filled.begin(), filled.end(), target) != filled.end())
                continue;
            target->copyText(source);
            filled.push_back(target);
        } catch (const uno::Exception &) {
        }
    }
}


// The paragraphs and tables of a text, in order.
std::vector<uno::Reference<beans::XPropertySet>> elementsOf(const uno::Reference<container::XEnumerationAccess> &text)
{
    std::vector<uno::Reference<beans::XPropertySet>> elements;
    uno::Reference<container::XEnumeration> items = text->createEnumeration();
    while (items->hasMoreElements()) {
        uno::Reference<beans::XPropertySet> element(items->nextElement(), uno::UNO_QUERY);
        if (element.is())
            elements.push_back(element);
    }
    return elements;
}

// Paragraphs among the elements of a text, those in its tables' cells included.
void collectParagraphs(const std::vector<uno::Reference<beans::XPropertySet>> &elements,
                       std::vector<uno::Reference<beans::XPropertySet>> *paragraphs)
{
    for (const auto &element : elements) {
        uno::Reference<text::XTextTable> table(element, uno::UNO_QUERY);
        if (!table.is()) {
            paragraphs->push_back(element);
            continue;
        }
        const uno::Sequence<rtl::OUString> cells = table->getCellNames();
        for (const rtl::OUString &cell : cells) {
            uno::Reference<container::XEnumerationAccess> cellText(table->getCellByName(cell), uno::UNO_QUERY);
            if (cellText.is())
                collectParagraphs(elementsOf(cellText), paragraphs);
        }
    }
}

// Paragraph values that a paragraph may set directly over its style, its font among them.
std::vector<rtl::OUString> directParagraphNames(const uno::Reference<beans::XPropertySet> &paragraph)
{
    static const std::set<rtl::OUString> managed = {ou("ParaStyleName"), ou("ParaConditionalStyleName"),
                                                    ou("ParaAutoStyleName"), ou("ParaIsNumberingRestart"),
                                                    ou("ParaNumberingStartValue"), ou("ParaChapterNumberingLevel"),
                                                    ou("CharAutoStyleName")};
    std::vector<rtl::OUString> names;
    for (const rtl::OUString &name : writableNames(paragraph, managed)) {
        if (name.startsWith("Para") || name.startsWith("Char"))
            names.push_back(name);
    }
    return names;
}

// Sets the paragraph's style and keeps what the paragraph sets directly: the office drops each
// direct value that the new style defines too (a paragraph without spacing under a style with
// spacing got the style's).
void restyleParagraph(const uno::Reference<beans::XPropertySet> &paragraph, const rtl::OUString &style,
                      const std::vector<rtl::OUString> &candidates)
{
    std::vector<rtl::OUString> names;
    uno::Reference<beans::XPropertyState> states(paragraph, uno::UNO_QUERY);
    if (states.is()) {
        const uno::Sequence<beans::PropertyState> found =
            states->getPropertyStates(uno::Sequence<rtl::OUString>(candidates.data(), sal_Int32(candidates.size())));
        for (sal_Int32 i = 0; i < found.getLength(); ++i) {
            if (found[i] == beans::PropertyState_DIRECT_VALUE)
                names.push_back(candidates[size_t(i)]);
        }
    }
    uno::Sequence<uno::Any> values;
    if (!names.empty() && !bulkValues(paragraph, names, &values))
        names.clear();
    // A paragraph taken out of its style's list stays out of it; one in a list keeps its place.
    bool outOfList = false;
    if (states.is() && states->getPropertyState(ou("NumberingStyleName")) == beans::PropertyState_DIRECT_VALUE)
        outOfList = stringProperty(paragraph, "NumberingStyleName").isEmpty();
    paragraph->setPropertyValue(ou("ParaStyleName"), uno::Any(style));
    if (outOfList)
        paragraph->setPropertyValue(ou("NumberingStyleName"), uno::Any(rtl::OUString()));
    if (names.empty())
        return;
    try {
        uno::Reference<beans::XMultiPropertySet>(paragraph, uno::UNO_QUERY_THROW)
            ->setPropertyValues(uno::Sequence<rtl::OUString>(names.data(), sal_Int32(names.size())), values);
    } catch (const uno::Exception &) {
        for (size_t i = 0; i < names.size(); ++i) {
            try {
                paragraph->setPropertyValue(names[i], values[sal_Int32(i)]);
            } catch (const uno::Exception &) {
            }
        }
    }
}

// A paragraph style of a name the target has too takes the target's definition on insertion, and
// the text reflows. Each such style the body uses that the target defines otherwise is copied, with
// every value it resolves to, under a name of its own. Returns whether any was.
bool keepParagraphStyles(const uno::Reference<text::XTextDocument> &source,
                         const std::vector<uno::Reference<beans::XPropertySet>> &elements,
                         const uno::Reference<text::XTextDocument> &target)
{
    uno::Reference<style::XStyleFamiliesSupplier> sourceSupplier(source, uno::UNO_QUERY_THROW);
    uno::Reference<style::XStyleFamiliesSupplier> targetSupplier(target, uno::UNO_QUERY_THROW);
    const uno::Reference<container::XNameContainer> sourceStyles(
        sourceSupplier->getStyleFamilies()->getByName(ou("ParagraphStyles")), uno::UNO_QUERY_THROW);
    const uno::Reference<container::XNameContainer> targetStyles(
        targetSupplier->getStyleFamilies()->getByName(ou("ParagraphStyles")), uno::UNO_QUERY_THROW);
    uno::Reference<lang::XMultiServiceFactory> factory(source, uno::UNO_QUERY_THROW);
    std::vector<uno::Reference<beans::XPropertySet>> paragraphs;
    collectParagraphs(elements, &paragraphs);
    // Links to other styles and lists stay with the original.
    const std::set<rtl::OUString> links = {ou("FollowStyle"), ou("DisplayName"), ou("ParentStyle"),
                                           ou("ParaStyleConditions"), ou("NumberingStyleName"), ou("LinkStyle")};
    std::map<rtl::OUString, rtl::OUString> renamed;
    std::vector<rtl::OUString> direct;
    // Whether the target defines a style of this name otherwise; answered once per name.
    std::map<rtl::OUString, bool> clashes;
    const auto clash = [&](const rtl::OUString &name) {
        const auto known = clashes.find(name);
        if (known != clashes.end())
            return known->second;
        const bool differs = targetStyles->hasByName(name)
            && !sameProperties(uno::Reference<beans::XPropertySet>(sourceStyles->getByName(name), uno::UNO_QUERY_THROW),
                               uno::Reference<beans::XPropertySet>(targetStyles->getByName(name), uno::UNO_QUERY_THROW),
                               links);
        clashes.emplace(name, differs);
        return differs;
    };
    // A style of a name the target lacks inherits, once inserted, what the target's style of its
    // parent's name gives: it takes every value it resolves to as its own.
    std::set<rtl::OUString> settled;
    bool flattened = false;
    const auto settle = [&](const rtl::OUString &name) {
        if (!settled.insert(name).second)
            return;
        uno::Reference<beans::XPropertySet> style(sourceStyles->getByName(name), uno::UNO_QUERY_THROW);
        // Every style descends from the default one, which no parent names.
        const rtl::OUString root = ou("Standard");
        std::set<rtl::OUString> seen{name};
        for (rtl::OUString at = name; at != root;) {
            rtl::OUString parent = stringProperty(uno::Reference<beans::XPropertySet>(sourceStyles->getByName(at), uno::UNO_QUERY_THROW),
                                                  "ParentStyle");
            if (parent.isEmpty())
                parent = root;
            if (!sourceStyles->hasByName(parent) || !seen.insert(parent).second)
                return;
            if (clash(parent)) {
                copyProperties(style, style, links);
                flattened = true;
                return;
            }
            at = parent;
        }
    };
    for (const auto &paragraph : paragraphs) {
        const rtl::OUString name = stringProperty(paragraph, "ParaStyleName");
        if (name.isEmpty() || !sourceStyles->hasByName(name))
            continue;
        if (!targetStyles->hasByName(name)) {
            settle(name);
            continue;
        }
        if (!clash(name))
            continue;
        auto found = renamed.find(name);
        if (found == renamed.end()) {
            uno::Reference<beans::XPropertySet> style(sourceStyles->getByName(name), uno::UNO_QUERY_THROW);
            const rtl::OUString display = stringProperty(style, "DisplayName");
            rtl::OUString fresh;
            for (int n = 2;; ++n) {
                fresh = toOUString(QStringLiteral("%1 (%2)").arg(toQString(display.isEmpty() ? name : display)).arg(n));
                if (!targetStyles->hasByName(fresh) && !sourceStyles->hasByName(fresh))
                    break;
            }
            uno::Reference<style::XStyle> copy(factory->createInstance(ou("com.sun.star.style.ParagraphStyle")), uno::UNO_QUERY_THROW);
            sourceStyles->insertByName(fresh, uno::Any(copy));
            uno::Reference<beans::XPropertySet> copied(copy, uno::UNO_QUERY_THROW);
            copyProperties(style, copied, links);
            // Its paragraphs stay in the style's list (headings lost their "3.1").
            const rtl::OUString list = stringProperty(style, "NumberingStyleName");
            if (!list.isEmpty())
                copied->setPropertyValue(ou("NumberingStyleName"), uno::Any(list));
            found = renamed.emplace(name, fresh).first;
        }
        try {
            if (direct.empty())
                direct = directParagraphNames(paragraph);
            restyleParagraph(paragraph, found->second, direct);
        } catch (const uno::Exception &) {
        }
    }
    return !renamed.empty() || flattened;
}

// Headings numbered by the outline take the target's outline numbering once inserted. Where the
// source's numbers otherwise, its headings get a list of their own under its rules.
bool keepOutlineNumbering(const uno::Reference<text::XTextDocument> &source,
                          const std::vector<uno::Reference<beans::XPropertySet>> &elements,
                          const uno::Reference<text::XTextDocument> &target)
{
    uno::Reference<text::XChapterNumberingSupplier> sourceOutline(source, uno::UNO_QUERY_THROW);
    uno::Reference<text::XChapterNumberingSupplier> targetOutline(target, uno::UNO_QUERY_THROW);
    const uno::Reference<container::XIndexReplace> rules = sourceOutline->getChapterNumberingRules();
    const uno::Reference<container::XIndexReplace> targetRules = targetOutline->getChapterNumberingRules();
    // Which heading style each level numbers is the outline's own business, not a list's.
    const rtl::OUString headingStyle = ou("HeadingStyleName");
    const auto levelOf = [&](const uno::Reference<container::XIndexReplace> &from, sal_Int32 level) {
        uno::Sequence<beans::PropertyValue> values;
        from->getByIndex(level) >>= values;
        std::vector<beans::PropertyValue> kept;
        std::copy_if(values.begin(), values.end(), std::back_inserter(kept),
                     [&](const beans::PropertyValue &value) { return value.Name != headingStyle; });
        return kept;
    };
    const auto named = [](const std::vector<beans::PropertyValue> &values) {
        std::map<rtl::OUString, uno::Any> byName;
        for (const beans::PropertyValue &value : values)
            byName.emplace(value.Name, value.Value);
        return byName;
    };
    bool same = rules->getCount() == targetRules->getCount();
    for (sal_Int32 level = 0; same && level < rules->getCount(); ++level)
        same = named(levelOf(rules, level)) == named(levelOf(targetRules, level));
    if (same)
        return false;
    const rtl::OUString outline = ou("Outline");
    std::vector<uno::Reference<beans::XPropertySet>> paragraphs;
    collectParagraphs(elements, &paragraphs);
    paragraphs.erase(std::remove_if(paragraphs.begin(), paragraphs.end(),
                                    [&](const uno::Reference<beans::XPropertySet> &paragraph) {
                                        return stringProperty(paragraph, "NumberingStyleName") != outline;
                                    }),
                     paragraphs.end());
    if (paragraphs.empty())
        return false;

    uno::Reference<style::XStyleFamiliesSupplier> sourceSupplier(source, uno::UNO_QUERY_THROW);
    uno::Reference<style::XStyleFamiliesSupplier> targetSupplier(target, uno::UNO_QUERY_THROW);
    const uno::Reference<container::XNameContainer> lists(sourceSupplier->getStyleFamilies()->getByName(ou("NumberingStyles")),
                                                          uno::UNO_QUERY_THROW);
    const uno::Reference<container::XNameAccess> targetLists(targetSupplier->getStyleFamilies()->getByName(ou("NumberingStyles")),
                                                             uno::UNO_QUERY_THROW);
    rtl::OUString fresh;
    for (int n = 2; fresh.isEmpty() || lists->hasByName(fresh) || targetLists->hasByName(fresh); ++n)
        fresh = toOUString(QStringLiteral("Outline (%1)").arg(n));
    uno::Reference<lang::XMultiServiceFactory> factory(source, uno::UNO_QUERY_THROW);
    uno::Reference<beans::XPropertySet> list(factory->createInstance(ou("com.sun.star.style.NumberingStyle")), uno::UNO_QUERY_THROW);
    lists->insertByName(fresh, uno::Any(list));
    uno::Reference<container::XIndexReplace> own(list->getPropertyValue(ou("NumberingRules")), uno::UNO_QUERY_THROW);
    for (sal_Int32 level = 0; level < rules->getCount() && level < own->getCount(); ++level) {
        const std::vector<beans::PropertyValue> values = levelOf(rules, level);
        own->replaceByIndex(level, uno::Any(uno::Sequence<beans::PropertyValue>(values.data(), sal_Int32(values.size()))));
    }
    list->setPropertyValue(ou("NumberingRules"), uno::Any(own));
    for (const auto &paragraph : paragraphs)
        paragraph->setPropertyValue(ou("NumberingStyleName"), uno::Any(fresh));
    return true;
}

// Pictures, shapes and objects do not always come along when a document is inserted as it is
// (a .doc page holding only a picture arrived empty); a copy in the office's own format brings
// them.
bool hasDrawnObjects(const uno::Reference<text::XTextDocument> &document)
{
    uno::Reference<drawing::XDrawPageSupplier> supplier(document, uno::UNO_QUERY);
    return supplier.is() && supplier->getDrawPage()->hasElements();
}

// A legacy link field keeps the linked object's data in a storage of its document's own, which
// the document it goes into lacks: saving that one in the legacy format then fails. The field
// leaves that storage behind and keeps its code and the picture it shows.
bool dropLinkStorages(const uno::Reference<text::XTextDocument> &document)
{
    uno::Reference<document::XStorageBasedDocument> stored(document, uno::UNO_QUERY);
    const uno::Reference<embed::XStorage> storage = stored.is() ? stored->getDocumentStorage() : nullptr;
    if (!storage.is() || !storage->hasByName(ou("OLELinks")))
        return false;
    std::vector<uno::Reference<beans::XPropertySet>> paragraphs;
    collectParagraphs(elementsOf(uno::Reference<container::XEnumerationAccess>(document->getText(), uno::UNO_QUERY_THROW)),
                      &paragraphs);
    const rtl::OUString storageParameter = ou("vnd.oasis.opendocument.field.ole");
    bool dropped = false;
    for (const auto &paragraph : paragraphs) {
        uno::Reference<container::XEnumerationAccess> portions(paragraph, uno::UNO_QUERY);
        const uno::Reference<container::XEnumeration> items = portions.is() ? portions->createEnumeration() : nullptr;
        while (items.is() && items->hasMoreElements()) {
            uno::Reference<beans::XPropertySet> portion(items->nextElement(), uno::UNO_QUERY);
            if (!portion.is() || stringProperty(portion, "TextPortionType") != ou("TextFieldStart"))
                continue;
            uno::Reference<text::XFormField> field(portion->getPropertyValue(ou("Bookmark")), uno::UNO_QUERY);
            const uno::Reference<container::XNameContainer> parameters = field.is() ? field->getParameters() : nullptr;
            if (parameters.is() && parameters->hasByName(storageParameter)) {
                parameters->removeByName(storageParameter);
                dropped = true;
            }
        }
    }
    return dropped;
}

QString fileUrl(const QString &path)
{
    return QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
}

// A stored copy leaves out a picture whose data the document lacks (its package misses the
// file), and the text around it moves up. Each such picture gets a blank one: it keeps its place.
void fillMissingPictures(const uno::Reference<uno::XComponentContext> &context,
                         const uno::Reference<text::XTextDocument> &document)
{
    uno::Reference<text::XTextGraphicObjectsSupplier> supplier(document, uno::UNO_QUERY);
    const uno::Reference<container::XIndexAccess> pictures(supplier.is() ? supplier->getGraphicObjects() : nullptr,
                                                           uno::UNO_QUERY);
    uno::Reference<graphic::XGraphic> blank;
    for (sal_Int32 i = 0; pictures.is() && i < pictures->getCount(); ++i) {
        uno::Reference<beans::XPropertySet> picture(pictures->getByIndex(i), uno::UNO_QUERY);
        uno::Reference<graphic::XGraphic> graphic;
        if (!picture.is() || ((picture->getPropertyValue(ou("Graphic")) >>= graphic) && graphic.is()))
            continue;
        if (!blank.is()) {
            // One transparent pixel.
            static const unsigned char png[] = {
                0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44, 0x52, 0x00,
                0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0x1f, 0x15, 0xc4, 0x89, 0x00,
                0x00, 0x00, 0x0b, 0x49, 0x44, 0x41, 0x54, 0x78, 0xda, 0x63, 0x60, 0x00, 0x02, 0x00, 0x00, 0x05, 0x00,
                0x01, 0xe9, 0xfa, 0xdc, 0xd8, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};
            const uno::Sequence<sal_Int8> bytes(reinterpret_cast<const sal_Int8 *>(png), sizeof png);
            const beans::PropertyValue stream =
                property("InputStream", uno::Any(io::SequenceInputStream::createStreamFromSequence(context, bytes)));
            blank = graphic::GraphicProvider::create(context)->queryGraphic(uno::Sequence<beans::PropertyValue>(&stream, 1));
        }
        picture->setPropertyValue(ou("Graphic"), uno::Any(blank));
    }
}

// Stores the document in the office's own format under a fresh name in folder; empty when that
// failed.
QString storeCopy(const uno::Reference<uno::XComponentContext> &context, const uno::Reference<text::XTextDocument> &document,
                  const QString &folder)
{
    try {
        fillMissingPictures(context, document);
    } catch (const uno::Exception &) {
        // Such pictures are then left out.
    }
    QString file;
    for (int n = 0; file.isEmpty() || QFile::exists(file); ++n)
        file = QDir(folder).filePath(QStringLiteral("zyl-layout-%1-%2.odt").arg(QCoreApplication::applicationPid()).arg(n));
    uno::Reference<frame::XStorable> storable(document, uno::UNO_QUERY_THROW);
    const beans::PropertyValue filterName = property("FilterName", uno::Any(ou("writer8")));
    storable->storeToURL(toOUString(fileUrl(file)),
                         uno::Sequence<beans::PropertyValue>(&filterName, 1));
    return QFile::exists(file) ? file : QString();
}

// The document at path, hidden and running no macros; null when the office cannot load it.
uno::Reference<lang::XComponent> load(const uno::Reference<frame::XDesktop2> &desktop, const QString &path)
{
    if (!desktop.is())
        return nullptr;
    std::vector<beans::PropertyValue> props = {
        property("Hidden", uno::Any(true)),
        property("MacroExecutionMode", uno::Any(document::MacroExecMode::NEVER_EXECUTE)),
        property("UpdateDocMode", uno::Any(document::UpdateDocMode::NO_UPDATE)),
        property("InteractionHandler", uno::Any(uno::Reference<task::XInteractionHandler>(new ZylInteractionHandler))),
    };
    const QString forced = ZylFilters::importFilterFor(path);
    if (!forced.isEmpty())
        props.push_back(property("FilterName", uno::Any(toOUString(forced))));
    return desktop->loadComponentFromURL(toOUString(fileUrl(path)), ou("_blank"), 0,
                                         uno::Sequence<beans::PropertyValue>(props.data(), sal_Int32(props.size())));
}

} // namespace

rtl::OUString ZylPageStyleImport::continuedStyle(const uno::Reference<text::XTextDocument> &document,
                                                const rtl::OUString &name)
{
    const uno::Reference<container::XNameContainer> styles = pageStyles(document);
    if (name.isEmpty() || !styles->hasByName(name))
        return name;
    uno::Reference<beans::XPropertySet> style(styles->getByName(name), uno::UNO_QUERY_THROW);
    bool firstShared = true;
    style->getPropertyValue(ou("FirstIsShared")) >>= firstShared;
    if (firstShared)
        return name;
    const rtl::OUString display = stringProperty(style, "DisplayName");
    const rtl::OUString continued =
        toOUString(QStringLiteral("%1 (continued)").arg(toQString(display.isEmpty() ? name : display)));
    if (styles->hasByName(continued))
        return continued;
    uno::Reference<lang::XMultiServiceFactory> factory(document, uno::UNO_QUERY_THROW);
    uno::Reference<beans::XPropertySet> copy(factory->createInstance(ou("com.sun.star.style.PageStyle")), uno::UNO_QUERY_THROW);
    styles->insertByName(continued, uno::Any(copy));
    copyPageStyle(style, copy);
    copy->setPropertyValue(ou("FirstIsShared"), uno::Any(true));
    // A style that follows itself goes on as the copy: the original would start a run anew.
    const rtl::OUString follow = stringProperty(style, "FollowStyle");
    copy->setPropertyValue(ou("FollowStyle"), uno::Any(follow.isEmpty() || follow == name ? continued : follow));
    return continued;
}

void ZylPageStyleImport::setParagraphStyle(const uno::Reference<beans::XPropertySet> &paragraph,
                                           const rtl::OUString &style)
{
    restyleParagraph(paragraph, style, directParagraphNames(paragraph));
}

bool ZylPageStyleImport::hasSides(const uno::Reference<text::XTextDocument> &document, const rtl::OUString &name)
{
    const uno::Reference<container::XNameContainer> styles = pageStyles(document);
    if (name.isEmpty() || !styles->hasByName(name))
        return false;
    uno::Reference<beans::XPropertySet> style(styles->getByName(name), uno::UNO_QUERY_THROW);
    style::PageStyleLayout layout = style::PageStyleLayout_ALL;
    style->getPropertyValue(ou("PageStyleLayout")) >>= layout;
    if (layout != style::PageStyleLayout_ALL)
        return true;
    for (const char *part : {"Header", "Footer"}) {
        bool on = false, shared = true;
        style->getPropertyValue(ou((std::string(part) + "IsOn").c_str())) >>= on;
        style->getPropertyValue(ou((std::string(part) + "IsShared").c_str())) >>= shared;
        if (on && !shared)
            return true;
    }
    return false;
}

bool ZylPageStyleImport::prepare(const uno::Reference<uno::XComponentContext> &context,
                                 const uno::Reference<frame::XDesktop2> &desktop,
                                 const uno::Reference<text::XTextDocument> &target, const QString &path,
                                 const QString &folder, const uno::Reference<frame::XModel> &loaded)
{
    m_url.clear();
    m_path.clear();
    m_firstStyle = rtl::OUString();
    m_firstNumber = 0;
    m_startsWithTable = false;
    m_endsHidden = false;
    m_first = m_last = EdgeParagraph();
    m_rules = ZylLayoutRules();
    // Tracked changes are carried by edits that a document opened read-only refuses.
    const bool reuse = loaded.is() && !ZylTrackedChanges::hasChanges(loaded);
    if (loaded.is() && !reuse)
        ZylSession::closeQuietly(loaded);
    const uno::Reference<lang::XComponent> component = reuse ? uno::Reference<lang::XComponent>(loaded, uno::UNO_QUERY)
                                                             : load(desktop, path);
    uno::Reference<frame::XModel> model(component, uno::UNO_QUERY);
    uno::Reference<text::XTextDocument> source(component, uno::UNO_QUERY);
    if (!model.is() || !source.is() || !target.is() || folder.isEmpty()) {
        if (model.is())
            ZylSession::closeQuietly(model);
        else if (component.is())
            component->dispose();
        return false;
    }
    struct Closer {
        uno::Reference<frame::XModel> model;
        ~Closer() { ZylSession::closeQuietly(model); }
    } closer{model};
    // Every change to a document whose controllers are unlocked lays it out again.
    model->lockControllers();
    m_rules = ZylLayoutRules::of(model);

    ZylTextBoxes::separateOutsideBody(source);
    bool fieldsFixed = false;
    try {
        fieldsFixed = ZylDocInfoFields::fix(source) > 0;
    } catch (const uno::Exception &) {
        // They show the merged document's properties.
    }

    bool endnotesPlaced = false;
    try {
        endnotesPlaced = ZylEndnotes::printInPlace(model);
    } catch (const uno::Exception &e) {
        // Some may have been made text already: the document goes in as it is.
        qCInfo(lcZylServer) << "endnotes stay endnotes:" << toQString(e.Message);
        return false;
    }

    // The body's elements and the page styles they start, the first one's included.
    const std::vector<uno::Reference<beans::XPropertySet>> elements =
        elementsOf(uno::Reference<container::XEnumerationAccess>(source->getText(), uno::UNO_QUERY_THROW));
    if (elements.empty())
        return false;
    const uno::Reference<container::XNameContainer> sourceStyles = pageStyles(source);
    std::vector<rtl::OUString> used;
    auto use = [&](const rtl::OUString &name) {
        if (!name.isEmpty() && sourceStyles->hasByName(name) && std::find(used.begin(), used.end(), name) == used.end())
            used.push_back(name);
    };
    rtl::OUString first = stringProperty(elements.front(), "PageDescName");
    if (first.isEmpty())
        first = stringProperty(elements.front(), "PageStyleName");
    if (first.isEmpty())
        first = ou("Standard");
    use(first);
    for (const auto &element : elements)
        use(stringProperty(element, "PageDescName"));
    for (size_t i = 0; i < used.size(); ++i) { // grows while follow styles are added
        uno::Reference<beans::XPropertySet> style(sourceStyles->getByName(used[i]), uno::UNO_QUERY_THROW);
        use(stringProperty(style, "FollowStyle"));
    }
    if (used.empty())
        return false;
    // A copy cut from a later page keeps that page's number; otherwise its pages count from 1.
    // A title page's own style may have one side only and its follow style two.
    if (std::any_of(used.begin(), used.end(), [&](const rtl::OUString &name) { return hasSides(source, name); })) {
        try {
            if (!(elements.front()->getPropertyValue(ou("PageNumberOffset")) >>= m_firstNumber) || m_firstNumber < 1)
                m_firstNumber = 1;
        } catch (const uno::Exception &) {
            m_firstNumber = 1;
        }
    }

    // When the target has every one of them as it is, the pages keep their names; otherwise all
    // get new names that neither document has, so that follow styles stay among themselves.
    const uno::Reference<container::XNameContainer> targetStyles = pageStyles(target);
    const bool targetHasThem = std::all_of(used.begin(), used.end(), [&](const rtl::OUString &name) {
        return targetStyles->hasByName(name)
            && samePageStyle(uno::Reference<beans::XPropertySet>(sourceStyles->getByName(name), uno::UNO_QUERY_THROW),
                             uno::Reference<beans::XPropertySet>(targetStyles->getByName(name), uno::UNO_QUERY_THROW));
    });
    std::map<rtl::OUString, rtl::OUString> renamed;
    for (const rtl::OUString &name : targetHasThem ? std::vector<rtl::OUString>() : used) {
        uno::Reference<beans::XPropertySet> style(sourceStyles->getByName(name), uno::UNO_QUERY_THROW);
        const QString base = toQString(stringProperty(style, "DisplayName").isEmpty() ? name : stringProperty(style, "DisplayName"));
        rtl::OUString fresh;
        for (int n = 2;; ++n) {
            fresh = toOUString(QStringLiteral("%1 (%2)").arg(base).arg(n));
            if (!targetStyles->hasByName(fresh) && !sourceStyles->hasByName(fresh))
                break;
        }
        uno::Reference<lang::XMultiServiceFactory> factory(source, uno::UNO_QUERY_THROW);
        uno::Reference<style::XStyle> copy(factory->createInstance(ou("com.sun.star.style.PageStyle")), uno::UNO_QUERY_THROW);
        sourceStyles->insertByName(fresh, uno::Any(copy));
        copyPageStyle(style, uno::Reference<beans::XPropertySet>(copy, uno::UNO_QUERY_THROW));
        renamed[name] = fresh;
    }
    for (const auto &pair : renamed) {
        uno::Reference<beans::XPropertySet> original(sourceStyles->getByName(pair.first), uno::UNO_QUERY_THROW);
        uno::Reference<beans::XPropertySet> copy(sourceStyles->getByName(pair.second), uno::UNO_QUERY_THROW);
        const auto follow = renamed.find(stringProperty(original, "FollowStyle"));
        if (follow != renamed.end())
            copy->setPropertyValue(ou("FollowStyle"), uno::Any(follow->second));
    }
    // A leading table gives up its own page style and break: the insertion names the first style
    // on whatever starts the content, so that only one page starts there.
    uno::Reference<text::XTextTable> leadingTable(elements.front(), uno::UNO_QUERY);
    m_startsWithTable = leadingTable.is();
    uno::Reference<text::XTextRange> last(elements.back(), uno::UNO_QUERY);
    if (elements.size() > 1 && last.is() && last->getString().isEmpty())
        elements.back()->getPropertyValue(ou("CharHidden")) >>= m_endsHidden;
    if (leadingTable.is()) {
        try {
            elements.front()->setPropertyValue(ou("PageDescName"), uno::Any(rtl::OUString()));
            elements.front()->setPropertyValue(ou("BreakType"), uno::Any(style::BreakType_NONE));
        } catch (const uno::Exception &) {
        }
    }
    for (size_t i = leadingTable.is() ? 1 : 0; i < elements.size(); ++i) {
        const rtl::OUString desc = i == 0 ? first : stringProperty(elements[i], "PageDescName");
        const auto to = renamed.find(desc);
        if (to == renamed.end())
            continue;
        try {
            elements[i]->setPropertyValue(ou("PageDescName"), uno::Any(to->second));
        } catch (const uno::Exception &) {
        }
    }

    bool paragraphStylesKept = false;
    try {
        paragraphStylesKept = keepParagraphStyles(source, elements, target);
    } catch (const uno::Exception &) {
        // The page layout comes along all the same.
    }
    bool outlineKept = false;
    try {
        outlineKept = keepOutlineNumbering(source, elements, target);
    } catch (const uno::Exception &e) {
        qCInfo(lcZylServer) << "headings keep the target's outline numbering:" << toQString(e.Message);
    }
    bool topsDropped = false;
    try {
        topsDropped = dropSpacingAtPageTops(model, source, target);
    } catch (const uno::Exception &) {
        // Its pages may then begin a little lower.
    }
    const auto firstRenamed = renamed.find(first);
    m_firstStyle = firstRenamed == renamed.end() ? first : firstRenamed->second;
    const auto isTable = [&](size_t i) { return uno::Reference<text::XTextTable>(elements[i], uno::UNO_QUERY).is(); };
    const auto edge = [&](size_t at, size_t next) {
        EdgeParagraph p;
        const uno::Reference<beans::XPropertySet> &e = elements[at];
        p.style = stringProperty(e, "ParaStyleName");
        e->getPropertyValue(ou("BreakType")) >>= p.breakType;
        p.pageStyle = stringProperty(e, "PageDescName");
        e->getPropertyValue(ou("NumberingLevel")) >>= p.level;
        // Told of a last paragraph only, where it is not the first as well.
        const uno::Reference<text::XTextRange> text(e, uno::UNO_QUERY);
        p.empty = at > 0 && text.is() && text->getString().isEmpty();
        const rtl::OUString list = stringProperty(e, "ListId");
        p.sharesList = next < elements.size() && next != at && !isTable(next) && !list.isEmpty()
            && list == stringProperty(elements[next], "ListId")
            && stringProperty(e, "NumberingStyleName") == stringProperty(elements[next], "NumberingStyleName");
        bool numbered = false;
        if (!list.isEmpty() && (e->getPropertyValue(ou("NumberingIsNumber")) >>= numbered) && numbered)
            p.list = stringProperty(e, "NumberingStyleName");
        return p;
    };
    if (!isTable(0))
        m_first = edge(0, 1);
    if (!isTable(elements.size() - 1))
        m_last = edge(elements.size() - 1, elements.size() - 2);
    bool linksDropped = false;
    try {
        linksDropped = dropLinkStorages(source);
    } catch (const uno::Exception &) {
        // A legacy save of the merged document may then fail.
    }
    // The Word format's reader drops where an inserted list starts counting anew, as a cut makes
    // it do for the list it went through; the office's own format keeps it.
    const bool restartsList = !ZylFilters::isOpenDocument(path)
        && std::any_of(elements.begin(), elements.end(), [](const uno::Reference<beans::XPropertySet> &e) {
               bool restart = false;
               return !uno::Reference<text::XTextTable>(e, uno::UNO_QUERY).is()
                   && (e->getPropertyValue(ou("ParaIsNumberingRestart")) >>= restart) && restart;
           });
    const bool hasChanges = ZylTrackedChanges::hasChanges(model);
    if (renamed.empty() && !paragraphStylesKept && !outlineKept && !endnotesPlaced && !topsDropped && !leadingTable.is() && !hasDrawnObjects(source)
        && !hasChanges && !linksDropped && !restartsList && !fieldsFixed) {
        // Nothing to change: the document goes in as it is, starting its first page style.
        m_url = fileUrl(path);
        if (!ZylFilters::isOpenDocument(path))
            m_first = m_last = EdgeParagraph();
        return true;
    }
    if (hasChanges)
        m_changes.mark(context, model);
    m_path = storeCopy(context, source, folder);
    if (m_path.isEmpty())
        return false;
    m_url = fileUrl(m_path);
    return true;
}

bool ZylPageStyleImport::dropSpacingAtPageTops(const uno::Reference<frame::XModel> &model,
                                               const uno::Reference<text::XTextDocument> &source,
                                               const uno::Reference<text::XTextDocument> &target)
{
    // Where the source gives a paragraph that begins a page no spacing above it and the target
    // would, each such paragraph sets none itself. It had none on its page: nothing reflows.
    const char *const atTops = "AddParaTableSpacingAtStart";
    if (documentSetting(source, atTops, true) || !documentSetting(target, atTops, true))
        return false;
    model->unlockControllers(); // the pages are needed
    struct Relock {
        uno::Reference<frame::XModel> model;
        ~Relock() { model->lockControllers(); }
    } relock{model};
    const uno::Reference<frame::XController> controller = model->getCurrentController();
    uno::Reference<beans::XPropertySet> controllerProps(controller, uno::UNO_QUERY_THROW);
    sal_Int32 pages = 0;
    controllerProps->getPropertyValue(ou("PageCount")) >>= pages;
    uno::Reference<text::XTextViewCursorSupplier> supplier(controller, uno::UNO_QUERY_THROW);
    const uno::Reference<text::XTextViewCursor> view = supplier->getViewCursor();
    uno::Reference<text::XPageCursor> pageCursor(view, uno::UNO_QUERY_THROW);
    const uno::Reference<text::XText> body = source->getText();
    bool dropped = false;
    for (sal_Int32 page = 1; page <= pages && page <= SAL_MAX_INT16; ++page) {
        if (!pageCursor->jumpToPage(sal_Int16(page)) || pageCursor->getPage() != page || !pageCursor->jumpToStartOfPage()
            || view->getText() != body)
            continue;
        uno::Reference<text::XParagraphCursor> start(body->createTextCursorByRange(view->getStart()), uno::UNO_QUERY_THROW);
        uno::Reference<beans::XPropertySet> paragraph(start, uno::UNO_QUERY_THROW);
        sal_Int32 above = 0;
        if (start->isStartOfParagraph() && (paragraph->getPropertyValue(ou("ParaTopMargin")) >>= above) && above > 0) {
            paragraph->setPropertyValue(ou("ParaTopMargin"), uno::Any(sal_Int32(0)));
            dropped = true;
        }
    }
    return dropped;
}
