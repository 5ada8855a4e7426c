#include "daloconfig.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <unistd.h>

namespace {

const int kDefaultReplyTimeoutMs = 30000;
const int kOnDemandIdleMs = 10 * 60 * 1000;

QString &configured(int which)
{
    static QString values[2];
    return values[which];
}

enum { SocketValue, RootValue };

QString fromEnvironment(const char *name)
{
    return QString::fromLocal8Bit(qgetenv(name));
}

QString privateSocketFolder()
{
    const QString runtime = fromEnvironment("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QFileInfo(runtime).isDir())
        return runtime;
    // Only the user may list or enter it, so nobody else can reach or replace the socket.
    const QString folder = QDir::tempPath() + QStringLiteral("/dalodrive-%1").arg(::getuid());
    QDir().mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return folder;
}

} // namespace

QString DaloConfig::socketName()
{
    if (!configured(SocketValue).isEmpty())
        return configured(SocketValue);
    const QString fromEnv = fromEnvironment("DALO_DRIVE_SOCKET");
    if (!fromEnv.isEmpty())
        return fromEnv;
    return socketPath(QStringLiteral("dalodrive"));
}

QString DaloConfig::socketPath(const QString &baseName)
{
    return privateSocketFolder() + QLatin1Char('/') + baseName + QStringLiteral(".sock");
}

void DaloConfig::setSocketName(const QString &name)
{
    configured(SocketValue) = name;
}

QString DaloConfig::serviceExecutable()
{
    const QString fromEnv = fromEnvironment("DALO_DRIVE_EXE");
    if (!fromEnv.isEmpty())
        return fromEnv;
    return QCoreApplication::applicationDirPath() + QStringLiteral("/dalodrive");
}

QString DaloConfig::driveRoot()
{
    if (!configured(RootValue).isEmpty())
        return configured(RootValue);
    const QString fromEnv = fromEnvironment("DALO_DRIVE_ROOT");
    if (!fromEnv.isEmpty())
        return fromEnv;
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/dalodrive");
}

void DaloConfig::setDriveRoot(const QString &dir)
{
    configured(RootValue) = dir;
}

int DaloConfig::replyTimeoutMs()
{
    bool ok = false;
    const int fromEnv = qEnvironmentVariableIntValue("DALO_IPC_TIMEOUT_MS", &ok);
    return ok && fromEnv > 0 ? fromEnv : kDefaultReplyTimeoutMs;
}

int DaloConfig::onDemandIdleMs()
{
    bool ok = false;
    const int fromEnv = qEnvironmentVariableIntValue("DALO_DRIVE_IDLE_MS", &ok);
    return ok && fromEnv > 0 ? fromEnv : kOnDemandIdleMs;
}
