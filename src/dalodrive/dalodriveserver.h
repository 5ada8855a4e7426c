#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include "dalodrive.h"

class QLocalServer;
class QLocalSocket;
class QSocketNotifier;
class QTimer;

// The drive service's socket: answers request frames from processes of this user, follows
// the signed-in user from its standard input when told to, and quits when that input ends
// or when it has been idle too long.
class DaloDriveServer : public QObject {
    Q_OBJECT
public:
    struct Options {
        QString socketName;
        QString driveRoot;
        QString user;
        bool controlStdin = false;
        // Take the socket over even when another service answers on it.
        bool replace = false;
        int idleExitMs = 0; // 0: never
        // Empty: the desktop's file manager.
        QString openWith;
    };

    explicit DaloDriveServer(const Options &options, QObject *parent = nullptr);

    // Returns false and sets errorString(); alreadyServed() tells that another service answers.
    bool listen();
    QString errorString() const { return m_errorString; }
    bool alreadyServed() const { return m_alreadyServed; }

private:
    void onNewConnection();
    void onRequestData(QLocalSocket *socket);
    void onControlInput();
    void reveal(const QString &folder);

    Options m_options;
    DaloDrive m_drive;
    QLocalServer *m_server;
    QSocketNotifier *m_control = nullptr;
    QByteArray m_controlBuffer;
    QTimer *m_idle;
    QString m_errorString;
    bool m_alreadyServed = false;
};
