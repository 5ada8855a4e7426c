#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

class QLocalSocket;
class QTimer;

// One request on its way to the drive service and back. It reports to its receiver exactly
// once (or not at all when the receiver is gone) and then deletes itself.
class DaloIpcCall : public QObject {
    Q_OBJECT
public:
    struct Request {
        QString id;
        QString method;
        QString recordType;
        QByteArray record;
        QString userId;
    };

    DaloIpcCall(const Request &request, QObject *receiver, const QByteArray &slotName);

    // Connects, starting the service when nothing listens, and sends the request.
    void start();

private:
    void connectToService();
    void onConnected();
    void onReadyRead();
    void onSocketError();
    // ok false: the task failed. Otherwise the service answered with code and result bytes.
    void finish(bool ok, int code = 0, const QByteArray &result = QByteArray());
    template <class Result>
    void deliver(bool ok, int code, const QByteArray &result);

    Request m_request;
    QPointer<QObject> m_receiver;
    QByteArray m_slotName;
    QLocalSocket *m_socket;
    QTimer *m_deadline;
    QByteArray m_buffer;
    bool m_startedService = false;
    bool m_finished = false;
};
