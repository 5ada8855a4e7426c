// Late-bound automation object: member names resolved without regard to case, arguments
// checked for count and type before a member runs, and nothing thrown out of Invoke.
#pragma once

#include <vector>

#include <QString>

#include <vcomrt/com.h>
#include <vcomrt/dispatchbase.h>

class ZylDispatch : public DispatchBase {
public:
    struct Member {
        const char *name;
        WORD kind; // DISPATCH_METHOD or DISPATCH_PROPERTYGET
        int minArgs;
        int maxArgs;
    };
    // Arguments in natural (left-to-right) order.
    using Args = std::vector<const VARIANT *>;

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR *rgszNames, UINT cNames, LCID lcid,
                                            DISPID *rgDispId) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID dispIdMember, REFIID riid, LCID lcid, WORD wFlags,
                                     DISPPARAMS *pDispParams, VARIANT *pVarResult,
                                     EXCEPINFO *pExcepInfo, UINT *puArgErr) override;

    // Argument readers: DISP_E_TYPEMISMATCH when the value is not of a usable type.
    static HRESULT toInt(const VARIANT *v, LONG *out);
    static HRESULT toText(const VARIANT *v, QString *out);
    static bool isMissing(const VARIANT *v);

    static void setResult(VARIANT *result, LONG value);
    // Hands one reference of the object to the result; the caller of Invoke owns it.
    static void setResult(VARIANT *result, ZylDispatch *object);

protected:
    explicit ZylDispatch(const std::vector<Member> &members);
    virtual ~ZylDispatch();

    // Runs member id (an index into the member table) after count and kind were checked.
    virtual HRESULT invokeMember(int id, const Args &args, VARIANT *result) = 0;

private:
    const std::vector<Member> &m_members;
};
