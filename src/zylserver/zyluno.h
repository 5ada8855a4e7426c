// Conversions between Qt and UNO strings and the property records the office's calls take, and
// the document settings the server reads.
#pragma once

#include <QString>

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/uno/Any.hxx>
#include <rtl/ustring.hxx>

rtl::OUString ou(const char *ascii);
rtl::OUString toOUString(const QString &s);
QString toQString(const rtl::OUString &s);
css::beans::PropertyValue property(const char *name, const css::uno::Any &value);
// A boolean of the document's settings (com.sun.star.text.DocumentSettings); fallback when unknown.
bool documentSetting(const css::uno::Reference<css::text::XTextDocument> &document, const char *name, bool fallback);
