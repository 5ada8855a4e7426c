// Entry point through which the automation runtime reaches the server.
#include <vcomrt/com.h>

#include "zylclassfactory.h"

namespace {
// {5B1E7C3A-9D42-4F8B-A6E1-2C7D90F3B415}, as registered for "VZyl.Application".
const CLSID kApplicationClsid = {0x5B1E7C3A, 0x9D42, 0x4F8B, {0xA6, 0xE1, 0x2C, 0x7D, 0x90, 0xF3, 0xB4, 0x15}};
}

extern "C" __attribute__((visibility("default"))) HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID *ppv)
{
    if (!ppv)
        return E_POINTER;
    *ppv = nullptr;
    if (rclsid != kApplicationClsid)
        return CLASS_E_CLASSNOTAVAILABLE;
    ZylClassFactory *factory = new ZylClassFactory;
    const HRESULT hr = factory->QueryInterface(riid, ppv);
    factory->Release();
    return hr;
}
