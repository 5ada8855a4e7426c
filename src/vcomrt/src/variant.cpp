#include "vcomrt/com.h"

namespace {

// Which VARTYPEs may stand in a VARIANT, as the OLE Automation runtime accepts them.
bool isValidVariantType(VARTYPE vt)
{
    if (vt & ~(VT_BYREF | VT_TYPEMASK))
        return false;
    const bool byRef = (vt & VT_BYREF) != 0;
    switch (vt & VT_TYPEMASK) {
    case VT_EMPTY:
    case VT_NULL:
        return !byRef;
    case VT_VARIANT:
        return byRef;
    case VT_I2:
    case VT_I4:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_ERROR:
    case VT_BOOL:
    case VT_UNKNOWN:
    case VT_I1:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_I8:
    case VT_UI8:
    case VT_INT:
    case VT_UINT:
        return true;
    default:
        return false;
    }
}

} // namespace

extern "C" {

void VariantInit(VARIANTARG *pvarg)
{
    if (!pvarg)
        return;
    pvarg->vt = VT_EMPTY;
    pvarg->wReserved1 = 0;
    pvarg->wReserved2 = 0;
    pvarg->wReserved3 = 0;
}

HRESULT VariantClear(VARIANTARG *pvarg)
{
    if (!pvarg)
        return E_INVALIDARG;
    if (!isValidVariantType(pvarg->vt))
        return DISP_E_BADVARTYPE;
    switch (pvarg->vt) {
    case VT_BSTR:
        SysFreeString(pvarg->bstrVal);
        break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
        // IDispatch derives from IUnknown with Release in the same place.
        if (pvarg->punkVal)
            pvarg->punkVal->Release();
        break;
    default:
        break; // plain values and references to someone else's storage
    }
    pvarg->vt = VT_EMPTY;
    return S_OK;
}

HRESULT VariantCopy(VARIANTARG *pvargDest, const VARIANTARG *pvargSrc)
{
    if (!pvargDest || !pvargSrc)
        return E_INVALIDARG;
    if (!isValidVariantType(pvargSrc->vt))
        return DISP_E_BADVARTYPE;
    if (pvargDest == pvargSrc)
        return S_OK;
    HRESULT hr = VariantClear(pvargDest);
    if (FAILED(hr))
        return hr;

    switch (pvargSrc->vt) {
    case VT_BSTR:
        if (pvargSrc->bstrVal) {
            BSTR copy = SysAllocStringByteLen(reinterpret_cast<const char *>(pvargSrc->bstrVal),
                                              SysStringByteLen(pvargSrc->bstrVal));
            if (!copy)
                return E_OUTOFMEMORY; // dest stays VT_EMPTY
            *pvargDest = *pvargSrc;
            pvargDest->bstrVal = copy;
            return S_OK;
        }
        break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
        if (pvargSrc->punkVal)
            pvargSrc->punkVal->AddRef();
        break;
    default:
        break;
    }
    *pvargDest = *pvargSrc;
    return S_OK;
}

} // extern "C"
