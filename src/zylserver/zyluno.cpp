#include "zyluno.h"

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
