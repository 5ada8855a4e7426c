#pragma once

#include <QString>
#include <QVariantMap>

namespace AppFrameWork {

// The host's record of the signed-in user.
struct VAppUserInfo {
    QString userId;
    QString userName;
};

// The host's account: who is signed in, and the host's own sign-in flow.
class IVAppAccount {
public:
    virtual ~IVAppAccount() = default;

    // Fills the fields of info that the host knows.
    virtual void userInfo(VAppUserInfo &info) = 0;
    // Shows the host's sign-in flow; returns at once.
    virtual void login(const QVariantMap &params) = 0;
    virtual bool isLogin() = 0;
};

} // namespace AppFrameWork
