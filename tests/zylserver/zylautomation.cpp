#include "zylautomation.h"

#include <algorithm>

VARIANT ZylAutomation::i4(LONG value)
{
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_I4;
    v.lVal = value;
    return v;
}

VARIANT ZylAutomation::text(const QString &value)
{
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_BSTR;
    v.bstrVal = SysAllocStringLen(reinterpret_cast<const OLECHAR *>(value.utf16()), UINT(value.size()));
    return v;
}

VARIANT ZylAutomation::empty()
{
    VARIANT v;
    VariantInit(&v);
    return v;
}

HRESULT ZylAutomation::createApplication(ComPtr<IDispatch> *application)
{
    CLSID clsid;
    HRESULT hr = CLSIDFromProgID(u"VZyl.Application", &clsid);
    if (FAILED(hr))
        return hr;
    return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                            reinterpret_cast<void **>(application->receive()));
}

HRESULT ZylAutomation::invoke(IDispatch *object, const QString &name, WORD kind, QVector<VARIANT> args, VARIANT *result)
{
    std::reverse(args.begin(), args.end());
    DISPID id = DISPID_UNKNOWN;
    QString copy = name;
    LPOLESTR names[1] = {reinterpret_cast<LPOLESTR>(copy.data())};
    HRESULT hr = object ? object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id) : E_POINTER;
    if (SUCCEEDED(hr)) {
        DISPPARAMS params{args.isEmpty() ? nullptr : args.data(), nullptr, UINT(args.size()), 0};
        hr = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &params, result, nullptr, nullptr);
    }
    for (VARIANT &v : args)
        VariantClear(&v);
    return hr;
}

HRESULT ZylAutomation::method(IDispatch *object, const QString &name, QVector<VARIANT> args)
{
    return invoke(object, name, DISPATCH_METHOD, std::move(args), nullptr);
}

HRESULT ZylAutomation::methodObject(IDispatch *object, const QString &name, QVector<VARIANT> args, ComPtr<IDispatch> *out)
{
    VARIANT result;
    VariantInit(&result);
    HRESULT hr = invoke(object, name, DISPATCH_METHOD, std::move(args), &result);
    if (SUCCEEDED(hr) && result.vt == VT_DISPATCH) {
        *out = ComPtr<IDispatch>::adopt(result.pdispVal);
        return hr;
    }
    VariantClear(&result);
    return FAILED(hr) ? hr : E_UNEXPECTED;
}

HRESULT ZylAutomation::methodInt(IDispatch *object, const QString &name, QVector<VARIANT> args, LONG *out)
{
    VARIANT result;
    VariantInit(&result);
    HRESULT hr = invoke(object, name, DISPATCH_METHOD, std::move(args), &result);
    if (SUCCEEDED(hr))
        *out = result.lVal;
    VariantClear(&result);
    return hr;
}

HRESULT ZylAutomation::getObject(IDispatch *object, const QString &name, ComPtr<IDispatch> *out)
{
    VARIANT result;
    VariantInit(&result);
    HRESULT hr = invoke(object, name, DISPATCH_PROPERTYGET, {}, &result);
    if (SUCCEEDED(hr) && result.vt == VT_DISPATCH) {
        *out = ComPtr<IDispatch>::adopt(result.pdispVal);
        return hr;
    }
    VariantClear(&result);
    return FAILED(hr) ? hr : E_UNEXPECTED;
}

HRESULT ZylAutomation::getInt(IDispatch *object, const QString &name, LONG *out)
{
    VARIANT result;
    VariantInit(&result);
    HRESULT hr = invoke(object, name, DISPATCH_PROPERTYGET, {}, &result);
    if (SUCCEEDED(hr))
        *out = result.lVal;
    VariantClear(&result);
    return hr;
}

HRESULT ZylAutomation::open(IDispatch *application, const QString &path, ComPtr<IDispatch> *document)
{
    ComPtr<IDispatch> documents;
    HRESULT hr = getObject(application, QStringLiteral("Documents"), &documents);
    if (FAILED(hr))
        return hr;
    return methodObject(documents.get(), QStringLiteral("Open"), {text(path)}, document);
}

HRESULT ZylAutomation::pageCount(IDispatch *document, LONG *pages)
{
    return methodInt(document, QStringLiteral("ComputeStatistics"), {i4(2)}, pages);
}

HRESULT ZylAutomation::pageStart(IDispatch *document, LONG page, LONG *position)
{
    ComPtr<IDispatch> range;
    HRESULT hr = methodObject(document, QStringLiteral("GoTo"), {i4(1), i4(1), i4(page)}, &range);
    if (FAILED(hr))
        return hr;
    return getInt(range.get(), QStringLiteral("Start"), position);
}

HRESULT ZylAutomation::pageEnd(IDispatch *document, LONG page, LONG *position)
{
    LONG pages = 0;
    HRESULT hr = pageCount(document, &pages);
    if (FAILED(hr))
        return hr;
    if (page < 1 || page > pages)
        return E_FAIL;
    if (page == pages) {
        ComPtr<IDispatch> whole;
        hr = methodObject(document, QStringLiteral("Range"), {}, &whole);
        return FAILED(hr) ? hr : getInt(whole.get(), QStringLiteral("End"), position);
    }
    ComPtr<IDispatch> range;
    hr = methodObject(document, QStringLiteral("GoTo"), {i4(1), i4(1), i4(page + 1)}, &range);
    return FAILED(hr) ? hr : getInt(range.get(), QStringLiteral("End"), position);
}

HRESULT ZylAutomation::deletePages(IDispatch *document, LONG first, LONG last)
{
    LONG start = 0, end = 0;
    HRESULT hr = pageStart(document, first, &start);
    if (SUCCEEDED(hr))
        hr = pageEnd(document, last, &end);
    ComPtr<IDispatch> range;
    if (SUCCEEDED(hr))
        hr = methodObject(document, QStringLiteral("Range"), {i4(start), i4(end)}, &range);
    return FAILED(hr) ? hr : method(range.get(), QStringLiteral("Delete"));
}

HRESULT ZylAutomation::appendDocument(IDispatch *document, const QString &path)
{
    LONG before = 0, after = 0;
    HRESULT hr = pageCount(document, &before);
    if (FAILED(hr))
        return hr;
    auto atEnd = [document](ComPtr<IDispatch> *range) {
        HRESULT r = methodObject(document, QStringLiteral("Range"), {}, range);
        return FAILED(r) ? r : method(range->get(), QStringLiteral("Collapse"), {i4(0)});
    };
    ComPtr<IDispatch> range;
    if (FAILED(hr = atEnd(&range)) || FAILED(hr = method(range.get(), QStringLiteral("InsertBreak"), {i4(7)})))
        return hr;
    if (FAILED(hr = pageCount(document, &after)))
        return hr;
    if (after != before + 1) {
        if (FAILED(hr = method(document, QStringLiteral("Undo"), {i4(1)})))
            return hr;
        if (FAILED(hr = atEnd(&range)) || FAILED(hr = method(range.get(), QStringLiteral("InsertParagraph"))))
            return hr;
    }
    if (FAILED(hr = atEnd(&range)) || FAILED(hr = method(range.get(), QStringLiteral("InsertFile"), {text(path)})))
        return hr;
    ComPtr<IDispatch> whole;
    LONG end = 0;
    if (FAILED(hr = methodObject(document, QStringLiteral("Range"), {}, &whole)) || FAILED(hr = getInt(whole.get(), QStringLiteral("End"), &end)))
        return hr;
    if (end == 0)
        return S_OK;
    ComPtr<IDispatch> last;
    if (FAILED(hr = methodObject(document, QStringLiteral("Range"), {i4(end - 1), i4(end)}, &last)))
        return hr;
    return method(last.get(), QStringLiteral("Delete"));
}
