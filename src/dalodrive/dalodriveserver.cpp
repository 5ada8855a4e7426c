#include "dalodriveserver.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QProcess>
#include <QSocketNotifier>
#include <QTimer>
#include <QUrl>

#include <unistd.h>

#include "daloframe.h"

Q_LOGGING_CATEGORY(lcDaloDriveServer, "dalodrive.server", QtInfoMsg)

namespace {

const int kProbeMs = 500;
const char kBufferProperty[] = "daloBuffer";

void openWithXdg(const QString &folder)
{
    if (!QProcess::startDetached(QStringLiteral("xdg-open"), {folder}))
        qCWarning(lcDaloDriveServer) << "cannot open" << folder;
}

} // namespace

DaloDriveServer::DaloDriveServer(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_drive(options.driveRoot)
    , m_server(new QLocalServer(this))
    , m_idle(new QTimer(this))
{
    m_drive.setUser(options.user);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server, &QLocalServer::newConnection, this, &DaloDriveServer::onNewConnection);
    m_idle->setSingleShot(true);
    connect(m_idle, &QTimer::timeout, this, [] {
        qCInfo(lcDaloDriveServer) << "idle; quitting";
        QCoreApplication::quit();
    });
    if (options.controlStdin) {
        m_control = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
        connect(m_control, &QSocketNotifier::activated, this, &DaloDriveServer::onControlInput);
    }
}

bool DaloDriveServer::listen()
{
    if (!m_options.replace) {
        QLocalSocket probe;
        probe.connectToServer(m_options.socketName);
        if (probe.waitForConnected(kProbeMs)) {
            m_alreadyServed = true;
            m_errorString = QStringLiteral("a drive service already answers on %1").arg(m_options.socketName);
            return false;
        }
    }
    QLocalServer::removeServer(m_options.socketName);
    if (!m_server->listen(m_options.socketName)) {
        m_errorString = QStringLiteral("cannot listen on %1: %2").arg(m_options.socketName, m_server->errorString());
        return false;
    }
    qCInfo(lcDaloDriveServer) << "listening on" << m_server->fullServerName();
    if (m_options.idleExitMs > 0)
        m_idle->start(m_options.idleExitMs);
    return true;
}

void DaloDriveServer::onNewConnection()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { onRequestData(socket); });
    }
}

void DaloDriveServer::onRequestData(QLocalSocket *socket)
{
    if (m_options.idleExitMs > 0)
        m_idle->start(m_options.idleExitMs);
    QByteArray buffer = socket->property(kBufferProperty).toByteArray() + socket->readAll();
    for (;;) {
        QByteArray payload;
        const DaloFrame::Status status = DaloFrame::take(buffer, &payload);
        if (status == DaloFrame::Status::Incomplete)
            break;
        if (status == DaloFrame::Status::TooLarge) {
            qCWarning(lcDaloDriveServer) << "dropped a connection sending an oversized frame";
            socket->abort();
            return;
        }
        QString folderToReveal;
        socket->write(DaloFrame::pack(m_drive.handle(payload, &folderToReveal)));
        if (!folderToReveal.isEmpty())
            reveal(folderToReveal);
    }
    socket->setProperty(kBufferProperty, buffer);
}

void DaloDriveServer::onControlInput()
{
    char chunk[4096];
    const ssize_t n = ::read(STDIN_FILENO, chunk, sizeof chunk);
    if (n <= 0) {
        // The host closed our input or went away: we go with it.
        m_control->setEnabled(false);
        QCoreApplication::quit();
        return;
    }
    m_controlBuffer.append(chunk, int(n));
    int end;
    while ((end = m_controlBuffer.indexOf('\n')) >= 0) {
        const QByteArray line = m_controlBuffer.left(end).trimmed();
        m_controlBuffer.remove(0, end + 1);
        if (line == "signout")
            m_drive.setUser(QString());
        else if (line.startsWith("user "))
            m_drive.setUser(QUrl::fromPercentEncoding(line.mid(5)));
        else
            qCWarning(lcDaloDriveServer) << "unknown control line" << line;
    }
}

void DaloDriveServer::reveal(const QString &folder)
{
    if (!m_options.openWith.isEmpty()) {
        if (!QProcess::startDetached(m_options.openWith, {folder}))
            qCWarning(lcDaloDriveServer) << "cannot start" << m_options.openWith;
        return;
    }
    // The freedesktop file-manager interface; a desktop without it still gets the folder opened.
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openWithXdg(folder);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowFolders"));
    call << QStringList{QUrl::fromLocalFile(folder).toString()} << QString();
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [folder](QDBusPendingCallWatcher *w) {
        if (w->isError())
            openWithXdg(folder);
        w->deleteLater();
    });
}
