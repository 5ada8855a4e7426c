// Automation runtime: the COM and OLE Automation subset that the word-processor
// client and servers use, with the names, values and semantics they have on Windows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vcomrt_export.h"

typedef int32_t HRESULT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef uint16_t WORD;
typedef int16_t SHORT;
typedef uint16_t USHORT;
typedef int32_t INT;
typedef uint32_t UINT;
typedef int64_t LONGLONG;
typedef int BOOL;
typedef uint8_t BYTE;
typedef char16_t OLECHAR;
typedef OLECHAR *LPOLESTR;
typedef const OLECHAR *LPCOLESTR;
typedef OLECHAR *BSTR;
typedef int16_t VARIANT_BOOL;
typedef uint16_t VARTYPE;
typedef LONG DISPID;
typedef DWORD LCID;
typedef void *LPVOID;
typedef LONG SCODE;

#define STDMETHODCALLTYPE
#define VARIANT_TRUE ((VARIANT_BOOL)-1)
#define VARIANT_FALSE ((VARIANT_BOOL)0)
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#define FAILED(hr) (((HRESULT)(hr)) < 0)

#define S_OK ((HRESULT)0L)
#define S_FALSE ((HRESULT)1L)
#define E_NOTIMPL ((HRESULT)0x80004001L)
#define E_NOINTERFACE ((HRESULT)0x80004002L)
#define E_POINTER ((HRESULT)0x80004003L)
#define E_ABORT ((HRESULT)0x80004004L)
#define E_FAIL ((HRESULT)0x80004005L)
#define E_UNEXPECTED ((HRESULT)0x8000FFFFL)
#define E_ACCESSDENIED ((HRESULT)0x80070005L)
#define E_OUTOFMEMORY ((HRESULT)0x8007000EL)
#define E_INVALIDARG ((HRESULT)0x80070057L)
#define DISP_E_UNKNOWNINTERFACE ((HRESULT)0x80020001L)
#define DISP_E_MEMBERNOTFOUND ((HRESULT)0x80020003L)
#define DISP_E_PARAMNOTFOUND ((HRESULT)0x80020004L)
#define DISP_E_TYPEMISMATCH ((HRESULT)0x80020005L)
#define DISP_E_UNKNOWNNAME ((HRESULT)0x80020006L)
#define DISP_E_NONAMEDARGS ((HRESULT)0x80020007L)
#define DISP_E_BADVARTYPE ((HRESULT)0x80020008L)
#define DISP_E_EXCEPTION ((HRESULT)0x80020009L)
#define DISP_E_BADPARAMCOUNT ((HRESULT)0x8002000EL)
#define DISP_E_PARAMNOTOPTIONAL ((HRESULT)0x8002000FL)
#define RPC_E_SERVERFAULT ((HRESULT)0x80010105L)
#define RPC_E_CHANGED_MODE ((HRESULT)0x80010106L)
#define RPC_E_DISCONNECTED ((HRESULT)0x80010108L)
#define RPC_E_TIMEOUT ((HRESULT)0x8001011FL)
#define CO_E_NOTINITIALIZED ((HRESULT)0x800401F0L)
#define CO_E_CLASSSTRING ((HRESULT)0x800401F3L)
#define CO_E_DLLNOTFOUND ((HRESULT)0x800401F8L)
#define CO_E_ERRORINDLL ((HRESULT)0x800401F9L)
#define REGDB_E_CLASSNOTREG ((HRESULT)0x80040154L)
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110L)
#define CLASS_E_CLASSNOTAVAILABLE ((HRESULT)0x80040111L)

struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
typedef GUID IID;
typedef GUID CLSID;
typedef const IID &REFIID;
typedef const CLSID &REFCLSID;
typedef const GUID &REFGUID;

inline bool IsEqualGUID(REFGUID a, REFGUID b)
{
    if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3)
        return false;
    for (int i = 0; i < 8; ++i) {
        if (a.Data4[i] != b.Data4[i])
            return false;
    }
    return true;
}
inline bool operator==(REFGUID a, REFGUID b) { return IsEqualGUID(a, b); }
inline bool operator!=(REFGUID a, REFGUID b) { return !IsEqualGUID(a, b); }

extern "C" VCOMRT_EXPORT const IID IID_NULL;
extern "C" VCOMRT_EXPORT const IID IID_IUnknown;
extern "C" VCOMRT_EXPORT const IID IID_IDispatch;
extern "C" VCOMRT_EXPORT const IID IID_IClassFactory;
#define GUID_NULL IID_NULL
#define CLSID_NULL IID_NULL

// VARENUM
enum : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_VECTOR = 0x1000,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
    VT_RESERVED = 0x8000,
    VT_TYPEMASK = 0x0fff
};

struct IUnknown;
struct IDispatch;
struct ITypeInfo;

struct VARIANT {
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union {
        LONGLONG llVal;
        uint64_t ullVal;
        LONG lVal;
        BYTE bVal;
        char cVal;
        USHORT uiVal;
        SHORT iVal;
        float fltVal;
        double dblVal;
        double date;
        LONGLONG cyVal; // currency, scaled by 10000
        VARIANT_BOOL boolVal;
        SCODE scode;
        BSTR bstrVal;
        IUnknown *punkVal;
        IDispatch *pdispVal;
        ULONG ulVal;
        INT intVal;
        UINT uintVal;
        VARIANT *pvarVal;
        void *byref;
    };
};
typedef VARIANT VARIANTARG;

#define V_VT(X) ((X)->vt)
#define V_I4(X) ((X)->lVal)
#define V_BOOL(X) ((X)->boolVal)
#define V_BSTR(X) ((X)->bstrVal)
#define V_DISPATCH(X) ((X)->pdispVal)
#define V_UNKNOWN(X) ((X)->punkVal)

struct DISPPARAMS {
    VARIANTARG *rgvarg; // arguments in reverse order: the last one first
    DISPID *rgdispidNamedArgs;
    UINT cArgs;
    UINT cNamedArgs;
};

struct EXCEPINFO {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
    void *pvReserved;
    void *pfnDeferredFillIn;
    SCODE scode;
};

#define DISPATCH_METHOD 0x1
#define DISPATCH_PROPERTYGET 0x2
#define DISPATCH_PROPERTYPUT 0x4
#define DISPATCH_PROPERTYPUTREF 0x8

#define DISPID_UNKNOWN (-1)
#define DISPID_VALUE (0)
#define DISPID_PROPERTYPUT (-3)

#define LOCALE_USER_DEFAULT 0x0400
#define LOCALE_SYSTEM_DEFAULT 0x0800

enum CLSCTX : DWORD {
    CLSCTX_INPROC_SERVER = 0x1,
    CLSCTX_INPROC_HANDLER = 0x2,
    CLSCTX_LOCAL_SERVER = 0x4,
    CLSCTX_REMOTE_SERVER = 0x10,
    CLSCTX_SERVER = CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER,
    CLSCTX_ALL = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER
};

enum COINIT : DWORD {
    COINIT_MULTITHREADED = 0x0,
    COINIT_APARTMENTTHREADED = 0x2,
    COINIT_DISABLE_OLE1DDE = 0x4,
    COINIT_SPEED_OVER_MEMORY = 0x8
};

// No virtual destructors, as on Windows: objects end themselves in Release().
struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppvObject) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;
};

struct IDispatch : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT *pctinfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT iTInfo, LCID lcid, ITypeInfo **ppTInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR *rgszNames, UINT cNames,
                                                    LCID lcid, DISPID *rgDispId) = 0;
    virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID dispIdMember, REFIID riid, LCID lcid, WORD wFlags,
                                             DISPPARAMS *pDispParams, VARIANT *pVarResult,
                                             EXCEPINFO *pExcepInfo, UINT *puArgErr) = 0;
};

struct IClassFactory : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown *pUnkOuter, REFIID riid, void **ppvObject) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) = 0;
};

// An in-process server library exports, unmangled:
//   HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID *ppv);
typedef HRESULT (*LPFNGETCLASSOBJECT)(REFCLSID, REFIID, LPVOID *);

extern "C" {
VCOMRT_EXPORT HRESULT CoInitialize(LPVOID pvReserved);
VCOMRT_EXPORT HRESULT CoInitializeEx(LPVOID pvReserved, DWORD dwCoInit);
VCOMRT_EXPORT void CoUninitialize();
VCOMRT_EXPORT HRESULT CLSIDFromProgID(LPCOLESTR lpszProgID, CLSID *lpclsid);
VCOMRT_EXPORT HRESULT CLSIDFromString(LPCOLESTR lpsz, CLSID *pclsid);
VCOMRT_EXPORT int StringFromGUID2(REFGUID rguid, LPOLESTR lpsz, int cchMax);
VCOMRT_EXPORT HRESULT CoGetClassObject(REFCLSID rclsid, DWORD dwClsContext, LPVOID pvReserved,
                                       REFIID riid, LPVOID *ppv);
VCOMRT_EXPORT HRESULT CoCreateInstance(REFCLSID rclsid, IUnknown *pUnkOuter, DWORD dwClsContext,
                                       REFIID riid, LPVOID *ppv);

VCOMRT_EXPORT BSTR SysAllocString(const OLECHAR *psz);
// A null strIn gives ui characters of uninitialised storage, terminated.
VCOMRT_EXPORT BSTR SysAllocStringLen(const OLECHAR *strIn, UINT ui);
VCOMRT_EXPORT BSTR SysAllocStringByteLen(const char *psz, UINT len);
VCOMRT_EXPORT void SysFreeString(BSTR bstrString);
VCOMRT_EXPORT UINT SysStringLen(BSTR pbstr);
VCOMRT_EXPORT UINT SysStringByteLen(BSTR bstr);

VCOMRT_EXPORT void VariantInit(VARIANTARG *pvarg);
VCOMRT_EXPORT HRESULT VariantClear(VARIANTARG *pvarg);
VCOMRT_EXPORT HRESULT VariantCopy(VARIANTARG *pvargDest, const VARIANTARG *pvargSrc);
}
