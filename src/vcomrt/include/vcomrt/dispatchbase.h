// The IUnknown and type-information part that every late-bound automation object shares:
// one reference at creation, deleted by its last Release(). Subclasses add GetIDsOfNames and Invoke.
#pragma once

#include <atomic>

#include "com.h"

class DispatchBase : public IDispatch {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppvObject) override
    {
        if (!ppvObject)
            return E_POINTER;
        if (riid == IID_IUnknown || riid == IID_IDispatch) {
            *ppvObject = static_cast<IDispatch *>(this);
            AddRef();
            return S_OK;
        }
        *ppvObject = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_refs; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --m_refs;
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT *pctinfo) override
    {
        if (!pctinfo)
            return E_POINTER;
        *pctinfo = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo **ppTInfo) override
    {
        if (ppTInfo)
            *ppTInfo = nullptr;
        return E_NOTIMPL;
    }

protected:
    DispatchBase() = default;
    virtual ~DispatchBase() = default;
    DispatchBase(const DispatchBase &) = delete;
    DispatchBase &operator=(const DispatchBase &) = delete;

private:
    std::atomic<ULONG> m_refs{1};
};
