#include "vappaccount.h"

#include <QWidget>

#include <pwd.h>
#include <unistd.h>

#include "vapplogging.h"
#include "vapplogindialog.h"

VAppAccount::VAppAccount(QObject *parent)
    : QObject(parent)
{
}

VAppAccount::~VAppAccount()
{
    delete m_dialog.data();
}

void VAppAccount::userInfo(AppFrameWork::VAppUserInfo &info)
{
    if (!m_signedIn) {
        info.userId.clear();
        info.userName.clear();
        return;
    }
    info.userId = m_userId;
    info.userName = m_userName;
}

void VAppAccount::login(const QVariantMap &params)
{
    Q_UNUSED(params)
    if (m_signedIn)
        return;
    if (m_dialog) {
        m_dialog->raise();
        m_dialog->activateWindow();
        return;
    }
    const QString suggested = m_userId.isEmpty() ? localUserName() : m_userId;
    m_dialog = new VAppLoginDialog(suggested, m_dialogParent.data());
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_dialog.data(), &QDialog::accepted, this, [this] {
        if (m_dialog)
            signIn(m_dialog->userName());
    });
    // Window-modal, not exec(): the caller expects login() to return at once.
    m_dialog->open();
}

bool VAppAccount::isLogin()
{
    return m_signedIn;
}

void VAppAccount::signIn(const QString &userId)
{
    const QString id = userId.trimmed();
    if (id.isEmpty())
        return;
    const bool changed = !m_signedIn || id != m_userId;
    m_userId = id;
    m_userName = id == localUserName() ? localDisplayName() : id;
    m_signedIn = true;
    if (changed) {
        qCInfo(lcVAppHost) << "signed in as" << m_userId;
        emit loginChanged(true);
    }
}

void VAppAccount::signOut()
{
    if (!m_signedIn)
        return;
    m_signedIn = false;
    qCInfo(lcVAppHost) << "signed out";
    emit loginChanged(false);
}

void VAppAccount::setDialogParent(QWidget *parent)
{
    m_dialogParent = parent;
}

VAppLoginDialog *VAppAccount::loginDialog() const
{
    return m_dialog.data();
}

QString VAppAccount::localUserName()
{
    if (const passwd *pw = ::getpwuid(::geteuid()); pw && pw->pw_name && *pw->pw_name)
        return QString::fromLocal8Bit(pw->pw_name);
    for (const char *var : {"USER", "LOGNAME"}) {
        const QString value = QString::fromLocal8Bit(qgetenv(var));
        if (!value.isEmpty())
            return value;
    }
    return QStringLiteral("user%1").arg(::geteuid());
}

QString VAppAccount::localDisplayName()
{
    if (const passwd *pw = ::getpwuid(::geteuid()); pw && pw->pw_gecos) {
        // The full name is the first comma-separated field of the GECOS entry.
        const QString fullName = QString::fromLocal8Bit(pw->pw_gecos).section(QLatin1Char(','), 0, 0)
                                     .trimmed();
        if (!fullName.isEmpty())
            return fullName;
    }
    return localUserName();
}
