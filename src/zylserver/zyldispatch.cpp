#include "zyldispatch.h"

#include <exception>

#include "zyllog.h"

ZylDispatch::ZylDispatch(const std::vector<Member> &members)
    : m_members(members)
{
}

ZylDispatch::~ZylDispatch() = default;

HRESULT ZylDispatch::GetIDsOfNames(REFIID, LPOLESTR *rgszNames, UINT cNames, LCID, DISPID *rgDispId)
{
    if (!rgszNames || !rgDispId || cNames == 0)
        return E_INVALIDARG;
    HRESULT hr = S_OK;
    // Only the first name is a member; further names would be named arguments, which no member has.
    for (UINT i = 0; i < cNames; ++i) {
        rgDispId[i] = DISPID_UNKNOWN;
        if (i > 0 || !rgszNames[i]) {
            hr = DISP_E_UNKNOWNNAME;
            continue;
        }
        const QString name = QString::fromUtf16(rgszNames[i]);
        bool found = false;
        for (size_t m = 0; m < m_members.size(); ++m) {
            if (name.compare(QLatin1String(m_members[m].name), Qt::CaseInsensitive) == 0) {
                rgDispId[i] = DISPID(m + 1);
                found = true;
                break;
            }
        }
        if (!found)
            hr = DISP_E_UNKNOWNNAME;
    }
    return hr;
}

HRESULT ZylDispatch::Invoke(DISPID dispIdMember, REFIID, LCID, WORD wFlags, DISPPARAMS *pDispParams,
                            VARIANT *pVarResult, EXCEPINFO *, UINT *puArgErr)
{
    if (dispIdMember < 1 || size_t(dispIdMember) > m_members.size())
        return DISP_E_MEMBERNOTFOUND;
    const Member &member = m_members[size_t(dispIdMember - 1)];
    // A property may be read with the method flag too, as script hosts do.
    const WORD accepted = member.kind == DISPATCH_PROPERTYGET ? WORD(DISPATCH_PROPERTYGET | DISPATCH_METHOD)
                                                              : WORD(DISPATCH_METHOD);
    if (!(wFlags & accepted) || (wFlags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)))
        return DISP_E_MEMBERNOTFOUND;

    DISPPARAMS empty{nullptr, nullptr, 0, 0};
    const DISPPARAMS *params = pDispParams ? pDispParams : &empty;
    if (params->cNamedArgs > 0)
        return DISP_E_NONAMEDARGS;
    if (params->cArgs > 0 && !params->rgvarg)
        return E_INVALIDARG;
    const int count = int(params->cArgs);
    if (count < member.minArgs || count > member.maxArgs)
        return DISP_E_BADPARAMCOUNT;

    Args args;
    args.reserve(size_t(count));
    for (int i = count - 1; i >= 0; --i) {
        const VARIANT *v = &params->rgvarg[i];
        // By-reference variants are read through.
        if (v->vt == (VT_BYREF | VT_VARIANT) && v->pvarVal)
            v = v->pvarVal;
        args.push_back(v);
    }

    VARIANT local;
    VariantInit(&local);
    VARIANT *result = pVarResult ? pVarResult : &local;
    if (pVarResult)
        VariantInit(pVarResult);
    HRESULT hr = E_FAIL;
    try {
        hr = invokeMember(dispIdMember - 1, args, result);
    } catch (const std::exception &e) {
        qCWarning(lcZylServer) << member.name << "failed:" << e.what();
        hr = DISP_E_EXCEPTION;
    } catch (...) {
        qCWarning(lcZylServer) << member.name << "failed with an unknown exception";
        hr = DISP_E_EXCEPTION;
    }
    if (FAILED(hr))
        VariantClear(result);
    VariantClear(&local);
    if (puArgErr)
        *puArgErr = 0;
    return hr;
}

bool ZylDispatch::isMissing(const VARIANT *v)
{
    return !v || v->vt == VT_EMPTY || (v->vt == VT_ERROR && v->scode == DISP_E_PARAMNOTFOUND);
}

HRESULT ZylDispatch::toInt(const VARIANT *v, LONG *out)
{
    if (!v)
        return DISP_E_TYPEMISMATCH;
    switch (v->vt) {
    case VT_I4:
    case VT_INT:
        *out = v->lVal;
        return S_OK;
    case VT_I2:
        *out = v->iVal;
        return S_OK;
    case VT_UI4:
    case VT_UINT:
        if (v->ulVal > 0x7fffffffu)
            return DISP_E_TYPEMISMATCH;
        *out = LONG(v->ulVal);
        return S_OK;
    case VT_BOOL:
        *out = v->boolVal ? -1 : 0;
        return S_OK;
    default:
        return DISP_E_TYPEMISMATCH;
    }
}

HRESULT ZylDispatch::toText(const VARIANT *v, QString *out)
{
    if (!v || v->vt != VT_BSTR)
        return DISP_E_TYPEMISMATCH;
    *out = v->bstrVal ? QString::fromUtf16(v->bstrVal, int(SysStringLen(v->bstrVal))) : QString();
    return S_OK;
}

void ZylDispatch::setResult(VARIANT *result, LONG value)
{
    VariantClear(result);
    result->vt = VT_I4;
    result->lVal = value;
}

void ZylDispatch::setResult(VARIANT *result, ZylDispatch *object)
{
    VariantClear(result);
    result->vt = VT_DISPATCH;
    result->pdispVal = object;
}
