// Hands out "VZyl.Application" objects.
#pragma once

#include <atomic>

#include <vcomrt/com.h>

class ZylClassFactory : public IClassFactory {
public:
    ZylClassFactory() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppvObject) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown *pUnkOuter, REFIID riid, void **ppvObject) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) override;

private:
    ~ZylClassFactory() = default;
    std::atomic<ULONG> m_refs{1};
};
