#pragma once

#include <QObject>
#include <QString>

#include "daloipc_export.h"

class QProcess;

// The drive service as a child of this process: it runs until stop() or until this object
// goes, and it follows the signed-in user given here. Only this process can change that
// user: the service reads it from its standard input, which this object holds.
class DALOIPC_EXPORT DaloDriveProcess : public QObject {
    Q_OBJECT
public:
    explicit DaloDriveProcess(QObject *parent = nullptr);
    ~DaloDriveProcess() override;

    // Starts the service on DaloConfig's socket and drive root, taking the socket over from a
    // service that may hold it, and waits a moment for it to listen. userId empty: nobody is
    // signed in. Returns false and sets errorString() when the program did not start.
    bool start(const QString &userId);
    void setUser(const QString &userId);
    // Closes the service's input, which ends it; kills it when it does not end soon.
    void stop();
    bool isRunning() const;
    QString errorString() const { return m_errorString; }

    // Starts a service on its own for a caller without a host: it serves userId, does not
    // take over a socket in use, and quits after a while without requests.
    static bool startDetached(const QString &userId, QString *errorString);

private:
    QProcess *m_process = nullptr;
    QString m_errorString;
};
