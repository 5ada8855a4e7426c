// Helpers shared by the runtime's tests.
#pragma once

#include <QString>

#include <vcomrt/com.h>

inline QString guidText(REFGUID guid)
{
    OLECHAR buffer[39];
    return StringFromGUID2(guid, buffer, 39) == 39 ? QString::fromUtf16(buffer) : QString();
}

// Lives on the stack; only counts, so the tests see every AddRef and Release.
class CountingDispatch : public IDispatch {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void **) override { return E_NOTIMPL; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ULONG(++refs); }
    ULONG STDMETHODCALLTYPE Release() override { return ULONG(--refs); }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo **) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR *, UINT, LCID, DISPID *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS *, VARIANT *, EXCEPINFO *, UINT *) override
    {
        return E_NOTIMPL;
    }

    int refs = 1;
};
