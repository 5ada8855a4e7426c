#include "zyldocinfofields.h"
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/beans/XPropertySetInfo.hpp>
#include <com/sun/star/container/XEnumeration.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/text/XTextField.hpp>
#include <com/sun/star/text/XTextFieldsSupplier.hpp>
#include "zyluno.h"

using namespace css;

namespace {

bool showsDocumentProperty(const uno::Reference<lang::XServiceInfo> &field)
{
    for (const rtl::OUString &service : field->getSupportedServiceNames()) {
        if (service.startsWith("com.sun.star.text.textfield.docinfo.") || service == "com.sun.star.text.textfield.Author"
            || service == "com.sun.star.text.TextField.Author")
            return true;
    }
    return false;
}

} // namespace

int ZylDocInfoFields::fix(const uno::Reference<text::XTextDocument> &document)
{
    uno::Reference<text::XTextFieldsSupplier> supplier(document, uno::UNO_QUERY);
    if (!supplier.is())
        return 0;
    int fixed = 0;
    const uno::Reference<container::XEnumeration> fields = supplier->getTextFields()->createEnumeration();
    while (fields->hasMoreElements()) {
        uno::Reference<text::XTextField> field(fields->nextElement(), uno::UNO_QUERY);
        uno::Reference<beans::XPropertySet> props(field, uno::UNO_QUERY);
        uno::Reference<lang::XServiceInfo> info(field, uno::UNO_QUERY);
        if (!field.is() || !props.is() || !info.is() || !showsDocumentProperty(info))
            continue;
        const uno::Reference<beans::XPropertySetInfo> names = props->getPropertySetInfo();
        bool isFixed = true;
        if (!names->hasPropertyByName(ou("IsFixed")) || !(props->getPropertyValue(ou("IsFixed")) >>= isFixed) || isFixed)
            continue;
        // A fixed field shows the text it holds, which the office keeps under one of two names.
        const char *holder = names->hasPropertyByName(ou("CurrentPresentation")) ? "CurrentPresentation"
            : names->hasPropertyByName(ou("Content"))                            ? "Content"
                                                                                 : nullptr;
        if (!holder)
            continue;
        try {
            const rtl::OUString shown = field->getPresentation(false);
            props->setPropertyValue(ou("IsFixed"), uno::Any(true));
            props->setPropertyValue(ou(holder), uno::Any(shown));
            ++fixed;
        } catch (const uno::Exception &) {
            // It shows the merged document's property.
        }
    }
    return fixed;
}
