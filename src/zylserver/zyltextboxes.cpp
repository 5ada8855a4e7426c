#include "zyltextboxes.h"
#include <algorithm>
#include <iterator>
#include <vector>
#include <com/sun/star/beans/PropertyAttribute.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/beans/XPropertySetInfo.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/drawing/XDrawPageSupplier.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/text/ControlCharacter.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextContent.hpp>
#include <com/sun/star/text/XTextCursor.hpp>
#include <com/sun/star/text/XTextField.hpp>
#include <com/sun/star/text/XTextFrame.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include "zyluno.h"

using namespace css;

namespace {

// Copies every property that to can take whose name starts with prefix, styles first: setting a
// style drops the formatting of one's own that it sets. Names, links to other frames, ruby text and
// the Word formats' keepsakes belong to the box; page breaks mean nothing in a frame; an anchor is
// set before the frame goes in.
void copyFormatting(const uno::Reference<beans::XPropertySet> &from, const uno::Reference<beans::XPropertySet> &to,
                    const char *prefix = "")
{
    static const char *const own[] = {"TextBox", "TextBoxContent", "Name", "LinkDisplayName", "AnchorType", "AnchorFrame",
                                      "AnchorPageNo", "PageDescName", "PageNumberOffset", "BreakType", "CharAutoStyleName",
                                      "ParaAutoStyleName"};
    const uno::Reference<beans::XPropertySetInfo> info = to->getPropertySetInfo();
    std::vector<rtl::OUString> names;
    for (const beans::Property &p : from->getPropertySetInfo()->getProperties()) {
        if (p.Name.startsWith(ou(prefix)) && !p.Name.startsWith("Chain") && !p.Name.startsWith("Ruby")
            && p.Name.indexOf("InteropGrabBag") < 0
            && std::none_of(std::begin(own), std::end(own), [&](const char *name) { return p.Name.equalsAscii(name); })
            && info->hasPropertyByName(p.Name)
            && !(info->getPropertyByName(p.Name).Attributes & beans::PropertyAttribute::READONLY))
            names.push_back(p.Name);
    }
    std::stable_partition(names.begin(), names.end(), [](const rtl::OUString &name) { return name.indexOf("StyleName") >= 0; });
    for (const rtl::OUString &name : names) {
        try {
            to->setPropertyValue(name, from->getPropertyValue(name));
        } catch (const uno::Exception &) {
            // Left as the frame has it.
        }
    }
}

// The same field, new; empty when the field needs more than its properties (a master) to exist.
uno::Reference<text::XTextContent> copyField(const uno::Reference<lang::XMultiServiceFactory> &factory,
                                             const uno::Reference<text::XTextField> &field)
{
    uno::Reference<lang::XServiceInfo> info(field, uno::UNO_QUERY);
    for (const rtl::OUString &service : info.is() ? info->getSupportedServiceNames() : uno::Sequence<rtl::OUString>()) {
        if (!service.startsWith("com.sun.star.text.TextField.") && !service.startsWith("com.sun.star.text.textfield."))
            continue;
        uno::Reference<text::XTextContent> copy(factory->createInstance(service), uno::UNO_QUERY);
        if (copy.is())
            copyFormatting(uno::Reference<beans::XPropertySet>(field, uno::UNO_QUERY_THROW),
                           uno::Reference<beans::XPropertySet>(copy, uno::UNO_QUERY_THROW));
        return copy;
    }
    return nullptr;
}

// Appends from's paragraphs to to, with their text, fields and formatting.
void copyText(const uno::Reference<lang::XMultiServiceFactory> &factory, const uno::Reference<text::XText> &from,
              const uno::Reference<text::XText> &to)
{
    uno::Reference<container::XEnumerationAccess> access(from, uno::UNO_QUERY_THROW);
    const uno::Reference<container::XEnumeration> all = access->createEnumeration();
    bool first = true;
    const auto lastInserted = [&](sal_Int32 length) {
        const uno::Reference<text::XTextCursor> cursor = to->createTextCursorByRange(to->getEnd());
        cursor->goLeft(sal_Int16(std::min<sal_Int32>(length, SAL_MAX_INT16)), true);
        return uno::Reference<beans::XPropertySet>(cursor, uno::UNO_QUERY_THROW);
    };
    while (all->hasMoreElements()) {
        uno::Reference<container::XEnumerationAccess> portions(all->nextElement(), uno::UNO_QUERY);
        uno::Reference<beans::XPropertySet> paragraph(portions, uno::UNO_QUERY);
        if (!portions.is() || !paragraph.is())
            continue; // a table, rare in a box, stays behind
        if (!first)
            to->insertControlCharacter(to->getEnd(), text::ControlCharacter::PARAGRAPH_BREAK, false);
        first = false;
        // A paragraph style set after them would drop the characters' own formatting.
        copyFormatting(paragraph, lastInserted(0), "Para");
        const uno::Reference<container::XEnumeration> items = portions->createEnumeration();
        while (items->hasMoreElements()) {
            uno::Reference<text::XTextRange> portion(items->nextElement(), uno::UNO_QUERY);
            uno::Reference<beans::XPropertySet> props(portion, uno::UNO_QUERY);
            rtl::OUString type;
            if (!portion.is() || !props.is() || !(props->getPropertyValue(ou("TextPortionType")) >>= type))
                continue;
            if (type == ou("Text") && !portion->getString().isEmpty()) {
                to->insertString(to->getEnd(), portion->getString(), false);
                copyFormatting(props, lastInserted(portion->getString().getLength()), "Char");
            } else if (type == ou("TextField")) {
                uno::Reference<text::XTextField> field(props->getPropertyValue(ou("TextField")), uno::UNO_QUERY);
                if (!field.is())
                    continue;
                const uno::Reference<text::XTextContent> copy = copyField(factory, field);
                try {
                    if (!copy.is())
                        throw uno::RuntimeException();
                    to->insertTextContent(to->getEnd(), copy, false);
                    copyFormatting(props, lastInserted(1), "Char");
                } catch (const uno::Exception &) {
                    to->insertString(to->getEnd(), field->getPresentation(false), false);
                }
            }
        }
    }
}

bool separate(const uno::Reference<lang::XMultiServiceFactory> &factory, const uno::Reference<beans::XPropertySet> &shape)
{
    bool textBox = false;
    uno::Reference<text::XTextFrame> box;
    uno::Reference<text::XTextContent> content(shape, uno::UNO_QUERY);
    if (!content.is() || !shape->getPropertySetInfo()->hasPropertyByName(ou("TextBox"))
        || !(shape->getPropertyValue(ou("TextBox")) >>= textBox) || !textBox
        || !(shape->getPropertyValue(ou("TextBoxContent")) >>= box) || !box.is())
        return false;
    const uno::Reference<text::XTextRange> anchor = content->getAnchor();
    uno::Reference<text::XTextFrame> frame(factory->createInstance(ou("com.sun.star.text.TextFrame")), uno::UNO_QUERY_THROW);
    const uno::Reference<beans::XPropertySet> boxProps(box, uno::UNO_QUERY_THROW);
    const uno::Reference<beans::XPropertySet> frameProps(frame, uno::UNO_QUERY_THROW);
    // Anchored anew once in a header, a frame could go to the footer.
    frameProps->setPropertyValue(ou("AnchorType"), boxProps->getPropertyValue(ou("AnchorType")));
    anchor->getText()->insertTextContent(anchor, uno::Reference<text::XTextContent>(frame, uno::UNO_QUERY_THROW), false);
    copyFormatting(boxProps, frameProps);
    try {
        copyText(factory, box->getText(), frame->getText());
    } catch (const uno::Exception &) {
        // What was copied shows; the box must go all the same.
    }
    shape->setPropertyValue(ou("TextBox"), uno::Any(false));
    return true;
}

int separateAll(const uno::Reference<lang::XMultiServiceFactory> &factory, const uno::Reference<uno::XInterface> &object)
{
    uno::Reference<lang::XServiceInfo> info(object, uno::UNO_QUERY);
    uno::Reference<container::XIndexAccess> group(object, uno::UNO_QUERY);
    if (info.is() && group.is() && info->supportsService(ou("com.sun.star.drawing.GroupShape"))) {
        int separated = 0;
        for (sal_Int32 i = 0; i < group->getCount(); ++i)
            separated += separateAll(factory, uno::Reference<uno::XInterface>(group->getByIndex(i), uno::UNO_QUERY));
        return separated;
    }
    uno::Reference<beans::XPropertySet> shape(object, uno::UNO_QUERY);
    try {
        return shape.is() && separate(factory, shape) ? 1 : 0;
    } catch (const uno::Exception &) {
        return 0;
    }
}

} // namespace

int ZylTextBoxes::separateOutsideBody(const uno::Reference<text::XTextDocument> &document)
{
    uno::Reference<drawing::XDrawPageSupplier> supplier(document, uno::UNO_QUERY);
    uno::Reference<lang::XMultiServiceFactory> factory(document, uno::UNO_QUERY);
    if (!supplier.is() || !factory.is())
        return 0;
    const uno::Reference<uno::XInterface> body(document->getText(), uno::UNO_QUERY);
    const uno::Reference<container::XIndexAccess> page(supplier->getDrawPage(), uno::UNO_QUERY);
    // The frames made join the draw page: only the shapes there before are looked at.
    const sal_Int32 count = page.is() ? page->getCount() : 0;
    std::vector<uno::Reference<uno::XInterface>> shapes;
    for (sal_Int32 i = 0; i < count; ++i)
        shapes.emplace_back(page->getByIndex(i), uno::UNO_QUERY);
    int separated = 0;
    for (const auto &shape : shapes) {
        uno::Reference<text::XTextContent> content(shape, uno::UNO_QUERY);
        uno::Reference<text::XTextRange> anchor;
        try {
            anchor = content.is() ? content->getAnchor() : nullptr;
        } catch (const uno::RuntimeException &) {
        }
        if (!anchor.is() || uno::Reference<uno::XInterface>(anchor->getText(), uno::UNO_QUERY) != body)
            separated += separateAll(factory, shape);
    }
    return separated;
}
