#pragma once

#include <QList>
#include <QVariantMap>

#include "host/ivappaccount.h"

// An account whose sign-in state the test sets; it records every call of login().
class FakeAppAccount : public AppFrameWork::IVAppAccount {
public:
    void setLoggedIn(bool loggedIn) { m_loggedIn = loggedIn; }
    void setUserId(const QString &userId) { m_userId = userId; }
    const QList<QVariantMap> &loginCalls() const { return m_loginCalls; }

    void userInfo(AppFrameWork::VAppUserInfo &info) override
    {
        info.userId = m_userId;
        info.userName = QStringLiteral("tester");
    }
    void login(const QVariantMap &params) override { m_loginCalls.append(params); }
    bool isLogin() override { return m_loggedIn; }

private:
    bool m_loggedIn = false;
    QString m_userId;
    QList<QVariantMap> m_loginCalls;
};
