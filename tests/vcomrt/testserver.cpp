// A minimal in-process automation server for the runtime's activation tests. It serves one class
// whose objects answer IUnknown and IDispatch, counts its live objects so tests can see that the
// runtime releases what it takes, and has one class whose factory lookup throws.
#include <vcomrt/com.h>

#include <atomic>
#include <stdexcept>

#include "testserverids.h"

#define TESTSERVER_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

std::atomic<int> s_liveObjects{0};
std::atomic<int> s_factoriesCreated{0};

// Counts itself among the live objects and answers IUnknown and the one interface it implements.
template <typename Interface>
class Counted : public Interface {
public:
    explicit Counted(REFIID iid) : m_iid(iid) { ++s_liveObjects; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppvObject) override
    {
        if (!ppvObject)
            return E_POINTER;
        if (riid == IID_IUnknown || riid == m_iid) {
            *ppvObject = static_cast<Interface *>(this);
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

protected:
    virtual ~Counted() { --s_liveObjects; }

private:
    const IID m_iid;
    std::atomic<ULONG> m_refs{1};
};

class TestObject final : public Counted<IDispatch> {
public:
    TestObject() : Counted(IID_IDispatch) {}

    // The tests only count references; nothing calls through the dispatch interface.
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo **) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR *, UINT, LCID, DISPID *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS *, VARIANT *, EXCEPINFO *,
                                     UINT *) override
    {
        return E_NOTIMPL;
    }
};

class TestFactory final : public Counted<IClassFactory> {
public:
    TestFactory() : Counted(IID_IClassFactory) { ++s_factoriesCreated; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown *pUnkOuter, REFIID riid, void **ppvObject) override
    {
        if (!ppvObject)
            return E_POINTER;
        *ppvObject = nullptr;
        if (pUnkOuter)
            return CLASS_E_NOAGGREGATION;
        TestObject *object = new TestObject;
        const HRESULT hr = object->QueryInterface(riid, ppvObject);
        object->Release();
        return hr;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

} // namespace

TESTSERVER_EXPORT HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID *ppv)
{
    if (!ppv)
        return E_POINTER;
    *ppv = nullptr;
    if (rclsid == CLSID_VComRtThrowingObject)
        throw std::runtime_error("class object lookup failed");
    if (rclsid != CLSID_VComRtTestObject)
        return CLASS_E_CLASSNOTAVAILABLE;
    TestFactory *factory = new TestFactory;
    const HRESULT hr = factory->QueryInterface(riid, ppv);
    factory->Release();
    return hr;
}

// Objects and factories alive right now.
TESTSERVER_EXPORT int vcomrtTestServerLiveObjects()
{
    return s_liveObjects.load();
}

TESTSERVER_EXPORT int vcomrtTestServerFactoriesCreated()
{
    return s_factoriesCreated.load();
}
