#include "zyltextboxes.h"
#include <vector>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/beans/XPropertySetInfo.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/drawing/XDrawPageSupplier.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/text/ControlCharacter.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/text/XTextContent.hpp>
#include <com/sun/star/text/XTextCursor.hpp>
#include <com/sun/star/text/XTextFrame.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include "zyluno.h"

using namespace css;

namespace {

struct Run {
    rtl::OUString text;
    std::vector<beans::PropertyValue> properties;
};

struct Paragraph {
    std::vector<beans::PropertyValue> properties;
    std::vector<Run> runs;
};

// The values of object's character or paragraph properties that a drawn shape's text has too. Style
// names and the Word formats' keepsakes mean nothing there.
std::vector<beans::PropertyValue> formatting(const uno::Reference<beans::XPropertySet> &object, const char *prefix)
{
    std::vector<beans::PropertyValue> values;
    const rtl::OUString start = ou(prefix);
    for (const beans::Property &p : object->getPropertySetInfo()->getProperties()) {
        if (!p.Name.startsWith(start) || p.Name.indexOf("Style") >= 0 || p.Name.indexOf("Numbering") >= 0
            || p.Name.indexOf("InteropGrabBag") >= 0)
            continue;
        try {
            beans::PropertyValue value;
            value.Name = p.Name;
            value.Value = object->getPropertyValue(p.Name);
            values.push_back(value);
        } catch (const uno::Exception &) {
        }
    }
    return values;
}

void apply(const std::vector<beans::PropertyValue> &values, const uno::Reference<beans::XPropertySet> &to)
{
    const uno::Reference<beans::XPropertySetInfo> info = to->getPropertySetInfo();
    for (const beans::PropertyValue &value : values) {
        if (!info->hasPropertyByName(value.Name))
            continue;
        try {
            to->setPropertyValue(value.Name, value.Value);
        } catch (const uno::Exception &) {
            // Left as the shape's text has it.
        }
    }
}

std::vector<Paragraph> read(const uno::Reference<text::XText> &text)
{
    std::vector<Paragraph> paragraphs;
    uno::Reference<container::XEnumerationAccess> access(text, uno::UNO_QUERY_THROW);
    const uno::Reference<container::XEnumeration> all = access->createEnumeration();
    while (all->hasMoreElements()) {
        uno::Reference<container::XEnumerationAccess> portions(all->nextElement(), uno::UNO_QUERY);
        uno::Reference<beans::XPropertySet> element(portions, uno::UNO_QUERY);
        if (!portions.is() || !element.is())
            continue; // a table: a drawn shape's text cannot hold one
        Paragraph paragraph{formatting(element, "Para"), {}};
        const uno::Reference<container::XEnumeration> items = portions->createEnumeration();
        while (items->hasMoreElements()) {
            uno::Reference<text::XTextRange> portion(items->nextElement(), uno::UNO_QUERY);
            uno::Reference<beans::XPropertySet> props(portion, uno::UNO_QUERY);
            rtl::OUString type;
            if (!portion.is() || !props.is() || !(props->getPropertyValue(ou("TextPortionType")) >>= type)
                || type != ou("Text") || portion->getString().isEmpty())
                continue;
            paragraph.runs.push_back(Run{portion->getString(), formatting(props, "Char")});
        }
        paragraphs.push_back(std::move(paragraph));
    }
    return paragraphs;
}

bool unframe(const uno::Reference<beans::XPropertySet> &shape)
{
    bool textBox = false;
    uno::Reference<text::XTextFrame> frame;
    if (!shape->getPropertySetInfo()->hasPropertyByName(ou("TextBox")) || !(shape->getPropertyValue(ou("TextBox")) >>= textBox)
        || !textBox || !(shape->getPropertyValue(ou("TextBoxContent")) >>= frame) || !frame.is())
        return false;
    const std::vector<Paragraph> paragraphs = read(frame->getText());
    shape->setPropertyValue(ou("TextBox"), uno::Any(false));
    uno::Reference<text::XText> text(shape, uno::UNO_QUERY_THROW);
    text->setString(rtl::OUString());
    const uno::Reference<text::XTextCursor> cursor = text->createTextCursor();
    for (size_t i = 0; i < paragraphs.size(); ++i) {
        if (i > 0)
            text->insertControlCharacter(text->getEnd(), text::ControlCharacter::PARAGRAPH_BREAK, false);
        cursor->gotoEnd(false);
        for (const Run &run : paragraphs[i].runs) {
            text->insertString(text->getEnd(), run.text, false);
            cursor->gotoEnd(false);
            cursor->goLeft(sal_Int16(std::min<sal_Int32>(run.text.getLength(), SAL_MAX_INT16)), true);
            apply(run.properties, uno::Reference<beans::XPropertySet>(cursor, uno::UNO_QUERY_THROW));
        }
        apply(paragraphs[i].properties, uno::Reference<beans::XPropertySet>(cursor, uno::UNO_QUERY_THROW));
    }
    return true;
}

int unframeAll(const uno::Reference<uno::XInterface> &object)
{
    uno::Reference<lang::XServiceInfo> info(object, uno::UNO_QUERY);
    uno::Reference<container::XIndexAccess> group(object, uno::UNO_QUERY);
    if (info.is() && group.is() && info->supportsService(ou("com.sun.star.drawing.GroupShape"))) {
        int moved = 0;
        for (sal_Int32 i = 0; i < group->getCount(); ++i)
            moved += unframeAll(uno::Reference<uno::XInterface>(group->getByIndex(i), uno::UNO_QUERY));
        return moved;
    }
    uno::Reference<beans::XPropertySet> shape(object, uno::UNO_QUERY);
    try {
        return shape.is() && unframe(shape) ? 1 : 0;
    } catch (const uno::Exception &) {
        return 0;
    }
}

} // namespace

int ZylTextBoxes::unframeOutsideBody(const uno::Reference<text::XTextDocument> &document)
{
    uno::Reference<drawing::XDrawPageSupplier> supplier(document, uno::UNO_QUERY);
    if (!supplier.is())
        return 0;
    const uno::Reference<uno::XInterface> body(document->getText(), uno::UNO_QUERY);
    const uno::Reference<container::XIndexAccess> page(supplier->getDrawPage(), uno::UNO_QUERY);
    int moved = 0;
    for (sal_Int32 i = 0; page.is() && i < page->getCount(); ++i) {
        const uno::Reference<uno::XInterface> shape(page->getByIndex(i), uno::UNO_QUERY);
        uno::Reference<text::XTextContent> content(shape, uno::UNO_QUERY);
        uno::Reference<text::XTextRange> anchor;
        try {
            anchor = content.is() ? content->getAnchor() : nullptr;
        } catch (const uno::RuntimeException &) {
        }
        if (!anchor.is() || uno::Reference<uno::XInterface>(anchor->getText(), uno::UNO_QUERY) != body)
            moved += unframeAll(shape);
    }
    return moved;
}
