#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include "vapphost_export.h"

class QLocalServer;
class QLocalSocket;

// Keeps one host per user: the first start listens on a local socket; a later start hands
// its files to it and ends. Messages are one JSON line each way:
// {"files":[...]} from the later start, {"ok":true} back once the files were taken.
class VAPPHOST_EXPORT VAppSingleInstance : public QObject {
    Q_OBJECT
public:
    explicit VAppSingleInstance(const QString &serverName, QObject *parent = nullptr);
    ~VAppSingleInstance() override;

    QString serverName() const { return m_serverName; }

    // Later start: hands files to a running host. Returns true when one took them; false when
    // none runs or it did not answer within timeoutMs. Blocks for at most about timeoutMs.
    bool handOver(const QStringList &files, int timeoutMs = 3000);

    // First start: takes the name, removing a socket that a crashed host left behind.
    // Returns false when the name cannot be taken; errorString() then says why.
    bool listen();
    bool isListening() const;
    QString errorString() const { return m_errorString; }

    // "vapphost-<user id>", reduced to characters safe in a socket name.
    static QString defaultServerName(const QString &userId);
    // Relative paths made absolute against folder, so that a host started elsewhere finds
    // them; anything that looks like a URL is left alone.
    static QStringList absolutePaths(const QStringList &files, const QString &folder);

signals:
    // A later start handed over these files (possibly none) and asks to be shown.
    void filesReceived(const QStringList &files);

private:
    void onNewConnection();
    void readFrom(QLocalSocket *socket);

    QString m_serverName;
    QString m_errorString;
    QLocalServer *m_server = nullptr;
};
