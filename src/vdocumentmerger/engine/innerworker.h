#pragma once

#include <QObject>
#include <QReadWriteLock>
#include <QRunnable>

#include "vdocumentmerger_engine_export.h"

// What the page-count and merge workers share: the cancel flag, the only data both threads
// touch, and the end of a run.
//
// Created without a parent on the GUI thread. Not auto-deleted by the pool: run() ends with
// finishRun(), which emits ended() and has the worker deleted on the GUI thread once run() has
// returned, so that the GUI thread never sees it half destroyed.
class VDOCUMENTMERGER_ENGINE_EXPORT InnerWorker : public QObject, public QRunnable {
    Q_OBJECT
public:
    InnerWorker();
    ~InnerWorker() override;

    bool isCanceled() const;

signals:
    // The run is over, cancelled or not; the worker's last signal.
    void ended();

protected slots:
    // Reached through the front object's canceled(), on the GUI thread.
    void cancelTask();

protected:
    // The last statement of run(): nothing of this object may be touched afterwards.
    void finishRun();

private:
    friend class InnerWorkerList;

    bool m_canceled = false;
    mutable QReadWriteLock m_cancelLock;
};
