#include "engine/innerzylprocessor.h"

#include <QFile>
#include <QLoggingCategory>

#include <algorithm>
#include <string>

#include <vcomrt/scopedvariant.h>

#include "engine/enginelog.h"

namespace {

const char16_t kProgId[] = u"VZyl.Application";

const DWORD kClassContext = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER
    | CLSCTX_REMOTE_SERVER;

const LONG kStatisticPages = 2;
const LONG kCloseWithoutSaving = 0;
const LONG kFormatDocx = 12;
const LONG kFormatByExtension = 0;
const LONG kGoToPage = 1;
const LONG kGoToAbsolute = 1;
const LONG kCollapseEnd = 0;
const LONG kPageBreak = 7;

// Up to five arguments, each owned by a ScopedVariant; data() lends them to one call.
class Args {
public:
    Args &i4(LONG value) { return add(ScopedVariant(value)); }
    Args &empty() { return add(ScopedVariant()); }
    Args &bstr(const QString &text)
    {
        const std::u16string utf16 = text.toStdU16String();
        ScopedVariant value(utf16.data(), UINT(utf16.size()));
        if (!value.get().bstrVal)
            throw InnerZylProcessor::OutOfMemory{E_OUTOFMEMORY};
        return add(std::move(value));
    }

    // Shallow copies: the values stay owned here and are cleared when Args goes.
    VARIANTARG *data()
    {
        for (unsigned i = 0; i < m_count; ++i)
            m_lent[i] = m_values[i].get();
        return m_lent;
    }
    unsigned count() const { return m_count; }

private:
    Args &add(ScopedVariant value)
    {
        if (m_count >= kMax) {
            qCCritical(lcEngine, "more than %u automation arguments", kMax);
            throw InnerZylProcessor::OutOfMemory{E_FAIL};
        }
        m_values[m_count++] = std::move(value);
        return *this;
    }

    static const unsigned kMax = 5;
    ScopedVariant m_values[kMax];
    VARIANTARG m_lent[kMax];
    unsigned m_count = 0;
};

// An object result as a new owning reference; anything else gives none.
InnerZylProcessor::Dispatch dispatchOf(const ScopedVariant &value)
{
    if (value.type() != VT_DISPATCH)
        return InnerZylProcessor::Dispatch();
    return InnerZylProcessor::Dispatch::share(value.get().pdispVal);
}

} // namespace

InnerZylProcessor::InnerZylProcessor() = default;

InnerZylProcessor::~InnerZylProcessor() = default;

QString InnerZylProcessor::toForwardSlashes(const QString &path)
{
    QString converted = path;
    converted.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return converted;
}

bool InnerZylProcessor::hasApplication() const
{
    return bool(m_application);
}

bool InnerZylProcessor::enterRun()
{
    m_inApartment = SUCCEEDED(CoInitialize(nullptr));
    return m_inApartment && (hasApplication() || SUCCEEDED(createApplication()));
}

void InnerZylProcessor::leaveRun()
{
    if (hasApplication()) {
        quitApplication();
        releaseApplication();
    }
    if (m_inApartment)
        CoUninitialize();
    m_inApartment = false;
}

HRESULT InnerZylProcessor::createApplication()
{
    if (m_application)
        return E_FAIL;
    CLSID clsid;
    HRESULT hr = CLSIDFromProgID(kProgId, &clsid);
    if (FAILED(hr)) {
        qCDebug(lcEngine, "VZyl.Application is not registered: 0x%08x", unsigned(hr));
        return hr;
    }
    IDispatch *application = nullptr;
    hr = CoCreateInstance(clsid, nullptr, kClassContext, IID_IDispatch,
                          reinterpret_cast<void **>(&application));
    if (FAILED(hr)) {
        qCDebug(lcEngine, "cannot create VZyl.Application: 0x%08x", unsigned(hr));
        return hr;
    }
    if (!application)
        return E_FAIL;
    m_application = Dispatch::adopt(application);
    return hr;
}

HRESULT InnerZylProcessor::quitApplication()
{
    if (!m_application)
        return E_FAIL;
    return invoke(m_application.get(), u"Quit", DISPATCH_METHOD, nullptr, 0, nullptr);
}

void InnerZylProcessor::releaseApplication()
{
    m_application.reset();
}

HRESULT InnerZylProcessor::documents(Dispatch *collection)
{
    collection->reset();
    if (!m_application)
        return E_FAIL;
    return callForObject(m_application.get(), u"Documents", DISPATCH_PROPERTYGET, nullptr, 0,
                         collection);
}

HRESULT InnerZylProcessor::openDocument(const QString &path, Dispatch *document)
{
    document->reset();
    if (!m_application)
        return E_FAIL;
    const QString converted = toForwardSlashes(path);
    if (!QFile::exists(converted))
        return E_FAIL;
    Dispatch collection;
    HRESULT hr = documents(&collection);
    if (FAILED(hr))
        return hr;
    if (!collection)
        return E_FAIL;
    Args args;
    args.bstr(converted);
    hr = callForObject(collection.get(), u"Open", DISPATCH_METHOD, args.data(), args.count(),
                       document);
    if (FAILED(hr))
        return hr;
    if (!*document)
        return E_FAIL;
    return hr;
}

HRESULT InnerZylProcessor::computeStatistics(IDispatch *document, int *pageCount)
{
    if (!document)
        return E_FAIL;
    Args args;
    args.i4(kStatisticPages);
    return callForInt(document, u"ComputeStatistics", DISPATCH_METHOD, args.data(), args.count(),
                      pageCount);
}

HRESULT InnerZylProcessor::protectionType(IDispatch *document, int *type)
{
    if (!document)
        return E_FAIL;
    return callForInt(document, u"ProtectionType", DISPATCH_PROPERTYGET, nullptr, 0, type);
}

HRESULT InnerZylProcessor::closeDocument(IDispatch *document)
{
    if (!document)
        return E_FAIL;
    Args args;
    args.i4(kCloseWithoutSaving);
    return invoke(document, u"Close", DISPATCH_METHOD, args.data(), args.count(), nullptr);
}

HRESULT InnerZylProcessor::saveDocument(IDispatch *document)
{
    if (!document)
        return E_FAIL;
    return invoke(document, u"Save", DISPATCH_METHOD, nullptr, 0, nullptr);
}

HRESULT InnerZylProcessor::saveDocumentAs(IDispatch *document, const QString &path)
{
    if (!document || QFile::exists(path))
        return E_FAIL;
    Args args;
    args.bstr(path).empty().empty().bstr(QString()).i4(0);
    return callMethod(document, u"SaveAs2", args.data(), args.count(), nullptr);
}

HRESULT InnerZylProcessor::saveDocumentAs(IDispatch *document, const QString &path,
                                          const QString &format)
{
    if (!document || QFile::exists(path))
        return E_FAIL;
    const LONG code = format == QLatin1String("docx") ? kFormatDocx : kFormatByExtension;
    Args args;
    args.bstr(path).i4(code).empty().bstr(QString()).i4(0);
    return callMethod(document, u"SaveAs2", args.data(), args.count(), nullptr);
}

HRESULT InnerZylProcessor::undo(IDispatch *document, int count)
{
    if (!document)
        return E_FAIL;
    Args args;
    args.i4(count);
    return invoke(document, u"Undo", DISPATCH_METHOD, args.data(), args.count(), nullptr);
}

HRESULT InnerZylProcessor::goToPage(IDispatch *document, int page, Dispatch *range)
{
    range->reset();
    if (!document)
        return E_FAIL;
    Args args;
    args.i4(kGoToPage).i4(kGoToAbsolute).i4(page);
    ScopedVariant result;
    const HRESULT hr = callMethod(document, u"GoTo", args.data(), args.count(), result.receive());
    if (FAILED(hr))
        return hr;
    *range = dispatchOf(result);
    return hr;
}

HRESULT InnerZylProcessor::wholeRange(IDispatch *document, Dispatch *range)
{
    range->reset();
    if (!document)
        return E_FAIL;
    return callForObject(document, u"Range", DISPATCH_METHOD, nullptr, 0, range);
}

HRESULT InnerZylProcessor::rangeOf(IDispatch *document, int start, int end, Dispatch *range)
{
    range->reset();
    if (!document || start < 0 || end < 0)
        return E_FAIL;
    Args args;
    args.i4(end).i4(start);
    return callForObject(document, u"Range", DISPATCH_METHOD, args.data(), args.count(), range);
}

HRESULT InnerZylProcessor::rangeStart(IDispatch *range, int *position)
{
    if (!range)
        return E_FAIL;
    return callForInt(range, u"Start", DISPATCH_PROPERTYGET, nullptr, 0, position);
}

HRESULT InnerZylProcessor::rangeEnd(IDispatch *range, int *position)
{
    if (!range)
        return E_FAIL;
    return callForInt(range, u"End", DISPATCH_PROPERTYGET, nullptr, 0, position);
}

HRESULT InnerZylProcessor::collapseToEnd(IDispatch *range)
{
    if (!range)
        return E_FAIL;
    Args args;
    args.i4(kCollapseEnd);
    return invoke(range, u"Collapse", DISPATCH_METHOD, args.data(), args.count(), nullptr);
}

HRESULT InnerZylProcessor::deleteRange(IDispatch *range)
{
    if (!range)
        return E_FAIL;
    return invoke(range, u"Delete", DISPATCH_METHOD, nullptr, 0, nullptr);
}

HRESULT InnerZylProcessor::insertBreakAtEnd(IDispatch *document)
{
    Args args;
    args.i4(kPageBreak);
    return onCollapsedEnd(document, u"InsertBreak", args.data(), args.count());
}

HRESULT InnerZylProcessor::insertParagraphAtEnd(IDispatch *document)
{
    return onCollapsedEnd(document, u"InsertParagraph", nullptr, 0);
}

HRESULT InnerZylProcessor::insertFileAtEnd(IDispatch *document, const QString &path)
{
    if (!document || !QFile::exists(path))
        return E_FAIL;
    Args args;
    args.bstr(path);
    return onCollapsedEnd(document, u"InsertFile", args.data(), args.count());
}

HRESULT InnerZylProcessor::onCollapsedEnd(IDispatch *document, const char16_t *name,
                                          VARIANTARG *args, unsigned count)
{
    if (!document)
        return E_FAIL;
    Dispatch range;
    HRESULT hr = wholeRange(document, &range);
    if (FAILED(hr))
        return hr;
    hr = collapseToEnd(range.get());
    if (FAILED(hr))
        return hr;
    return invoke(range.get(), name, DISPATCH_METHOD, args, count, nullptr);
}

HRESULT InnerZylProcessor::pageStart(IDispatch *document, int page, int *position)
{
    return pageBoundary(document, page, false, position);
}

HRESULT InnerZylProcessor::pageEnd(IDispatch *document, int page, int *position)
{
    return pageBoundary(document, page, true, position);
}

HRESULT InnerZylProcessor::pageBoundary(IDispatch *document, int page, bool end, int *position)
{
    if (!document || page < 1)
        return E_FAIL;
    int pages = 0;
    HRESULT hr = computeStatistics(document, &pages);
    if (FAILED(hr))
        return hr;
    if (page > pages)
        return E_FAIL;
    Dispatch range;
    if (!end)
        hr = goToPage(document, page, &range);
    else if (page == pages)
        hr = wholeRange(document, &range);
    else
        hr = goToPage(document, page + 1, &range); // its End is where the next page begins
    if (FAILED(hr))
        return hr;
    return end ? rangeEnd(range.get(), position) : rangeStart(range.get(), position);
}

HRESULT InnerZylProcessor::deletePages(IDispatch *document, int first, int last)
{
    if (!document || first < 1 || last < 1 || first > last)
        return E_FAIL;
    int start = 0;
    HRESULT hr = pageStart(document, first, &start);
    if (FAILED(hr))
        return hr;
    int end = 0;
    hr = pageEnd(document, last, &end);
    if (FAILED(hr))
        return hr;
    Dispatch range;
    hr = rangeOf(document, start, end, &range);
    if (FAILED(hr))
        return hr;
    return deleteRange(range.get());
}

HRESULT InnerZylProcessor::appendDocument(IDispatch *target, const QString &path)
{
    if (!target)
        return E_FAIL;
    int before = 0;
    HRESULT hr = computeStatistics(target, &before);
    if (FAILED(hr))
        return hr;
    hr = insertBreakAtEnd(target);
    if (FAILED(hr))
        return hr;
    int after = 0;
    hr = computeStatistics(target, &after);
    if (FAILED(hr))
        return hr;
    if (after - before != 1) {
        // The break did not start exactly one new page (it may have landed on an empty last
        // page): a plain paragraph separates the sources instead.
        hr = undo(target, 1);
        if (FAILED(hr))
            return hr;
        hr = insertParagraphAtEnd(target);
        if (FAILED(hr))
            return hr;
    }
    hr = insertFileAtEnd(target, path);
    if (FAILED(hr))
        return hr;
    // The inserted file brings its own final paragraph mark.
    return deleteLastCharacter(target);
}

HRESULT InnerZylProcessor::deleteLastCharacter(IDispatch *document)
{
    if (!document)
        return E_FAIL;
    Dispatch whole;
    HRESULT hr = wholeRange(document, &whole);
    if (FAILED(hr))
        return hr;
    int end = 0;
    hr = rangeEnd(whole.get(), &end);
    if (FAILED(hr))
        return hr;
    if (end == 0)
        return hr;
    Dispatch last;
    hr = rangeOf(document, end - 1, end, &last);
    if (FAILED(hr))
        return hr;
    return deleteRange(last.get());
}

HRESULT InnerZylProcessor::callMethod(IDispatch *object, const char16_t *name, VARIANTARG *args,
                                      unsigned count, VARIANT *result)
{
    if (!object)
        return E_FAIL;
    std::reverse(args, args + count);
    return invoke(object, name, DISPATCH_METHOD, args, count, result);
}

HRESULT InnerZylProcessor::invoke(IDispatch *object, const char16_t *name, WORD kind,
                                  VARIANTARG *args, unsigned count, VARIANT *result)
{
    if (!object)
        return E_FAIL;
    // Resolved on every call: a member id is only known to be valid for the object that gave it.
    std::u16string member(name);
    LPOLESTR names[] = {&member[0]};
    DISPID id = DISPID_UNKNOWN;
    HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr)) {
        qCDebug(lcEngine, "no member %s: 0x%08x", qPrintable(QString::fromStdU16String(member)),
                unsigned(hr));
        return hr;
    }
    DISPPARAMS params = {args, nullptr, count, 0};
    hr = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &params, result, nullptr, nullptr);
    if (FAILED(hr))
        qCDebug(lcEngine, "%s failed: 0x%08x", qPrintable(QString::fromStdU16String(member)),
                unsigned(hr));
    return hr;
}

HRESULT InnerZylProcessor::callForObject(IDispatch *object, const char16_t *name, WORD kind,
                                         VARIANTARG *args, unsigned count, Dispatch *out)
{
    out->reset();
    ScopedVariant result;
    const HRESULT hr = invoke(object, name, kind, args, count, result.receive());
    if (FAILED(hr))
        return hr;
    *out = dispatchOf(result);
    return hr;
}

HRESULT InnerZylProcessor::callForInt(IDispatch *object, const char16_t *name, WORD kind,
                                      VARIANTARG *args, unsigned count, int *out)
{
    ScopedVariant result;
    const HRESULT hr = invoke(object, name, kind, args, count, result.receive());
    if (FAILED(hr))
        return hr;
    switch (result.type()) {
    case VT_I4:
        *out = int(result.get().lVal);
        return hr;
    case VT_I2:
        *out = int(result.get().iVal);
        return hr;
    default:
        qCWarning(lcEngine, "%s answered a value of type %u, not an integer",
                  qPrintable(QString::fromStdU16String(name)), unsigned(result.type()));
        return DISP_E_TYPEMISMATCH;
    }
}
