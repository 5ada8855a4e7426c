#include "zylclassfactory.h"

#include "zylapplication.h"

HRESULT ZylClassFactory::QueryInterface(REFIID riid, void **ppvObject)
{
    if (!ppvObject)
        return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IClassFactory) {
        *ppvObject = static_cast<IClassFactory *>(this);
        AddRef();
        return S_OK;
    }
    *ppvObject = nullptr;
    return E_NOINTERFACE;
}

ULONG ZylClassFactory::AddRef()
{
    return ++m_refs;
}

ULONG ZylClassFactory::Release()
{
    const ULONG left = --m_refs;
    if (left == 0)
        delete this;
    return left;
}

HRESULT ZylClassFactory::CreateInstance(IUnknown *pUnkOuter, REFIID riid, void **ppvObject)
{
    if (!ppvObject)
        return E_POINTER;
    *ppvObject = nullptr;
    if (pUnkOuter)
        return CLASS_E_NOAGGREGATION;
    if (riid != IID_IUnknown && riid != IID_IDispatch)
        return E_NOINTERFACE;
    ZylApplication *application = ZylApplication::create();
    if (!application)
        return CO_E_ERRORINDLL; // no office could be started
    const HRESULT hr = application->QueryInterface(riid, ppvObject);
    application->Release();
    return hr;
}

HRESULT ZylClassFactory::LockServer(BOOL)
{
    return S_OK;
}
