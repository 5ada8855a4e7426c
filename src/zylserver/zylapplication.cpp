#include "zylapplication.h"

#include "zyldocuments.h"
#include "zyllog.h"
#include "zyloffice.h"
#include "zylsession.h"

namespace {
enum Member { Quit, Documents };

const std::vector<ZylDispatch::Member> &members()
{
    static const std::vector<ZylDispatch::Member> table = {
        {"Quit", DISPATCH_METHOD, 0, 3},
        {"Documents", DISPATCH_PROPERTYGET, 0, 0},
    };
    return table;
}
} // namespace

ZylApplication *ZylApplication::create()
{
    QString error;
    std::shared_ptr<ZylOffice> office = ZylOffice::acquire(&error);
    if (!office) {
        qCWarning(lcZylServer) << "no office:" << error;
        return nullptr;
    }
    return new ZylApplication(std::make_shared<ZylSession>(std::move(office)));
}

ZylApplication::ZylApplication(std::shared_ptr<ZylSession> session)
    : ZylDispatch(members())
    , m_session(std::move(session))
{
}

ZylApplication::~ZylApplication() = default;

HRESULT ZylApplication::invokeMember(int id, const Args &, VARIANT *result)
{
    switch (id) {
    case Quit:
        return m_session->office().call("Quit", [this] { return m_session->closeAll(); });
    case Documents:
        if (!m_session->office().isAlive())
            return RPC_E_DISCONNECTED;
        setResult(result, new ZylDocuments(m_session));
        return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
}
