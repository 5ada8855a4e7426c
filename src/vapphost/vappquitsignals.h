#pragma once

#include <QObject>

#include "vapphost_export.h"

class QSocketNotifier;

// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the GUI thread, so that a host
// asked to stop by the session or a terminal still closes its window and lets the add-on
// clean up. One instance per process; later instances watch nothing.
class VAPPHOST_EXPORT VAppQuitSignals : public QObject {
    Q_OBJECT
public:
    explicit VAppQuitSignals(QObject *parent = nullptr);
    ~VAppQuitSignals() override;

    bool isWatching() const { return m_notifier != nullptr; }

signals:
    // The number of the signal that arrived.
    void quitRequested(int signalNumber);

private:
    void onReadable();

    QSocketNotifier *m_notifier = nullptr;
};
