#include "vappsingleinstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QTimer>

#include "vapplogging.h"

namespace {

const int kMaxMessageBytes = 4 * 1024 * 1024;
const int kStaleClientMs = 10000;

} // namespace

VAppSingleInstance::VAppSingleInstance(const QString &serverName, QObject *parent)
    : QObject(parent)
    , m_serverName(serverName)
{
}

VAppSingleInstance::~VAppSingleInstance() = default;

bool VAppSingleInstance::handOver(const QStringList &files, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    const auto remaining = [&clock, timeoutMs] {
        return int(qMax<qint64>(1, timeoutMs - clock.elapsed()));
    };

    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(remaining()))
        return false;

    QJsonObject message;
    message.insert(QStringLiteral("files"), QJsonArray::fromStringList(files));
    socket.write(QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n');
    if (!socket.waitForBytesWritten(remaining())) {
        qCWarning(lcVAppHost) << "the running host did not take the files:" << socket.errorString();
        return false;
    }
    QByteArray reply;
    while (!reply.contains('\n')) {
        if (clock.elapsed() >= timeoutMs || !socket.waitForReadyRead(remaining())) {
            qCWarning(lcVAppHost) << "the running host did not answer in time";
            return false;
        }
        reply += socket.readAll();
    }
    const QJsonObject answer = QJsonDocument::fromJson(reply.left(reply.indexOf('\n'))).object();
    socket.disconnectFromServer();
    return answer.value(QStringLiteral("ok")).toBool();
}

bool VAppSingleInstance::listen()
{
    if (isListening())
        return true;
    m_errorString.clear();
    if (!m_server) {
        m_server = new QLocalServer(this);
        // No socket options: with them Qt binds elsewhere and renames over the name, which
        // would silently take it from a live host instead of failing.
        connect(m_server, &QLocalServer::newConnection, this, &VAppSingleInstance::onNewConnection);
    }
    if (m_server->listen(m_serverName))
        return true;
    if (m_server->serverError() == QAbstractSocket::AddressInUseError) {
        // Either a live host (then a hand-over would have worked) or a leftover socket file.
        QLocalSocket probe;
        probe.connectToServer(m_serverName);
        if (probe.waitForConnected(500)) {
            m_errorString = QStringLiteral("another host already listens on \"%1\"").arg(m_serverName);
            return false;
        }
        QLocalServer::removeServer(m_serverName);
        if (m_server->listen(m_serverName))
            return true;
    }
    m_errorString = m_server->errorString();
    return false;
}

bool VAppSingleInstance::isListening() const
{
    return m_server && m_server->isListening();
}

QString VAppSingleInstance::defaultServerName(const QString &userId)
{
    QString safe = userId;
    safe.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9._-]")), QStringLiteral("_"));
    if (safe.isEmpty())
        safe = QStringLiteral("user");
    return QStringLiteral("vapphost-") + safe;
}

QStringList VAppSingleInstance::absolutePaths(const QStringList &files, const QString &folder)
{
    const QDir base(folder);
    QStringList result;
    result.reserve(files.size());
    for (const QString &file : files) {
        if (file.isEmpty() || file.contains(QLatin1String("://")) || QDir::isAbsolutePath(file))
            result << file;
        else
            result << base.absoluteFilePath(file);
    }
    return result;
}

void VAppSingleInstance::onNewConnection()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); });
        // A client that connects and never finishes its line must not stay forever.
        QTimer::singleShot(kStaleClientMs, socket, [socket] { socket->abort(); socket->deleteLater(); });
        if (socket->bytesAvailable() > 0)
            readFrom(socket);
    }
}

void VAppSingleInstance::readFrom(QLocalSocket *socket)
{
    if (socket->property("vapphost_done").toBool())
        return;
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > kMaxMessageBytes) {
            qCWarning(lcVAppHost) << "dropped an oversized message from a later start";
            socket->abort();
        }
        return;
    }
    socket->setProperty("vapphost_done", true);
    const QByteArray line = socket->readLine(kMaxMessageBytes).trimmed();
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(line, &error);
    const QJsonValue filesValue = doc.object().value(QStringLiteral("files"));
    if (error.error != QJsonParseError::NoError || !doc.isObject() || !filesValue.isArray()) {
        qCWarning(lcVAppHost) << "ignored a malformed message from a later start";
        socket->write("{\"ok\":false}\n");
        socket->disconnectFromServer();
        return;
    }
    QStringList files;
    for (const QJsonValue &v : filesValue.toArray()) {
        if (v.isString())
            files << v.toString();
    }
    socket->write("{\"ok\":true}\n");
    socket->flush();
    socket->disconnectFromServer();
    emit filesReceived(files);
}
