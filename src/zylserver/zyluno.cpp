#include "zyluno.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>

rtl::OUString ou(const char *ascii)
{
    return rtl::OUString::createFromAscii(ascii);
}

rtl::OUString toOUString(const QString &s)
{
    return rtl::OUString(reinterpret_cast<const sal_Unicode *>(s.utf16()), s.size());
}

QString toQString(const rtl::OUString &s)
{
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(s.getStr()), s.getLength());
}

css::beans::PropertyValue property(const char *name, const css::uno::Any &value)
{
    css::beans::PropertyValue p;
    p.Name = ou(name);
    p.Value = value;
    return p;
}

bool documentSetting(const css::uno::Reference<css::text::XTextDocument> &document, const char *name, bool fallback)
{
    using namespace css;
    try {
        uno::Reference<lang::XMultiServiceFactory> factory(document, uno::UNO_QUERY_THROW);
        uno::Reference<beans::XPropertySet> settings(factory->createInstance(ou("com.sun.star.text.DocumentSettings")),
                                                     uno::UNO_QUERY_THROW);
        bool value = fallback;
        settings->getPropertyValue(ou(name)) >>= value;
        return value;
    } catch (const uno::Exception &) {
        return fallback;
    }
}
