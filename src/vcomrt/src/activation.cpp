#include "vcomrt/com.h"

#include <exception>

#include "apartment.h"
#include "guid.h"
#include "serverloader.h"
#include "serverregistry.h"
#include "trace.h"
#include "utf.h"

using vcomrt::Trace;

extern "C" {

HRESULT CLSIDFromProgID(LPCOLESTR lpszProgID, CLSID *lpclsid)
{
    if (!lpszProgID || !lpclsid)
        return E_INVALIDARG;
    const std::string progId = vcomrt::toUtf8(lpszProgID);
    vcomrt::RegistrationFile entry;
    if (progId.empty() || !vcomrt::ServerRegistry::findByProgId(progId, &entry)) {
        Trace::message("ProgID not registered: " + progId);
        *lpclsid = IID_NULL;
        return CO_E_CLASSSTRING;
    }
    *lpclsid = entry.clsid();
    return S_OK;
}

HRESULT CoGetClassObject(REFCLSID rclsid, DWORD dwClsContext, LPVOID pvReserved, REFIID riid,
                         LPVOID *ppv)
{
    (void)pvReserved; // remote server information: no remote activation here
    if (!ppv)
        return E_INVALIDARG;
    *ppv = nullptr;
    if (!vcomrt::Apartment::canActivate())
        return CO_E_NOTINITIALIZED;
    const std::string clsidText = vcomrt::toUtf8(vcomrt::formatGuid(rclsid).c_str());
    // Only in-process servers exist here; asking for any other kind alone finds nothing.
    if (!(dwClsContext & CLSCTX_INPROC_SERVER)) {
        Trace::message("no in-process server requested for " + clsidText);
        return REGDB_E_CLASSNOTREG;
    }
    vcomrt::RegistrationFile entry;
    if (!vcomrt::ServerRegistry::findByClsid(rclsid, &entry)) {
        Trace::message("class not registered: " + clsidText);
        return REGDB_E_CLASSNOTREG;
    }
    LPFNGETCLASSOBJECT getClassObject = nullptr;
    HRESULT hr = vcomrt::ServerLoader::instance().classObjectEntry(entry.libraryPath(), &getClassObject);
    if (FAILED(hr))
        return hr;
    try {
        hr = getClassObject(rclsid, riid, ppv);
    } catch (...) {
        // An exception must not unwind through the client; report it as a server fault.
        Trace::message("DllGetClassObject threw for " + clsidText);
        *ppv = nullptr;
        return RPC_E_SERVERFAULT;
    }
    if (FAILED(hr))
        *ppv = nullptr;
    return hr;
}

HRESULT CoCreateInstance(REFCLSID rclsid, IUnknown *pUnkOuter, DWORD dwClsContext, REFIID riid,
                         LPVOID *ppv)
{
    if (!ppv)
        return E_POINTER;
    *ppv = nullptr;
    if (!vcomrt::Apartment::canActivate())
        return CO_E_NOTINITIALIZED;
    if (pUnkOuter)
        return CLASS_E_NOAGGREGATION;

    IClassFactory *factory = nullptr;
    HRESULT hr = CoGetClassObject(rclsid, dwClsContext, nullptr, IID_IClassFactory,
                                  reinterpret_cast<void **>(&factory));
    if (FAILED(hr))
        return hr;
    if (!factory)
        return E_UNEXPECTED;
    try {
        hr = factory->CreateInstance(nullptr, riid, ppv);
    } catch (...) {
        Trace::message("IClassFactory::CreateInstance threw");
        hr = RPC_E_SERVERFAULT;
    }
    factory->Release();
    if (FAILED(hr))
        *ppv = nullptr;
    return hr;
}

} // extern "C"
