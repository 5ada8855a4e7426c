#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include "host/ivappaccount.h"
#include "vapphost_export.h"

class QWidget;
class VAppLoginDialog;

// The host's account: signed in under a user name, or signed out. Signing in goes through a
// small dialog that asks for the user name.
class VAPPHOST_EXPORT VAppAccount : public QObject, public AppFrameWork::IVAppAccount {
    Q_OBJECT
public:
    explicit VAppAccount(QObject *parent = nullptr);
    ~VAppAccount() override;

    // Signed out: the fields are cleared. Signed in: userId is the signed-in name.
    void userInfo(AppFrameWork::VAppUserInfo &info) override;
    // Opens the sign-in dialog (or raises the open one) and returns at once; nothing happens
    // while signed in.
    void login(const QVariantMap &params) override;
    bool isLogin() override;

    void signIn(const QString &userId);
    void signOut();

    // The window the sign-in dialog is centred on; may be null.
    void setDialogParent(QWidget *parent);
    // The sign-in dialog while it is open, else null.
    VAppLoginDialog *loginDialog() const;

    // The local login name of the user running the process.
    static QString localUserName();
    // The user's full name from the account database, else the login name.
    static QString localDisplayName();

signals:
    void loginChanged(bool signedIn);

private:
    QString m_userId;
    QString m_userName;
    bool m_signedIn = false;
    QPointer<QWidget> m_dialogParent;
    QPointer<VAppLoginDialog> m_dialog;
};
