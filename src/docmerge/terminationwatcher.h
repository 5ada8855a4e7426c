#pragma once

#include <QObject>

class QSocketNotifier;

// Turns SIGINT and SIGTERM into a Qt signal on the thread that made the watcher. One per process.
class TerminationWatcher : public QObject {
    Q_OBJECT
public:
    explicit TerminationWatcher(QObject *parent = nullptr);
    ~TerminationWatcher() override;

    bool isActive() const;

signals:
    void terminationRequested(int signalNumber);

private:
    void onReadable();

    QSocketNotifier *m_notifier = nullptr;
};
