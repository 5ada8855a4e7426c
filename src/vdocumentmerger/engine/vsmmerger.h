#pragma once

#include <QObject>

#include "engine/mergetask.h"
#include "engine/innerworkerlist.h"
#include "vdocumentmerger_engine_export.h"

class InnerMerger;

// Runs merges on pool threads; lives on the GUI thread.
//
// start() returns at once. taskInitFinished() tells that the word processor is ready,
// subProgress(index, 100) that index sources are in, and mergeFinished(result) ends the run with
// 0 (saved at the task's outputPath) or -99 (nothing completed). A cancelled run reports no
// mergeFinished, and the running count it took is never given back. Destroying the object
// cancels its workers without reporting anything.
class VDOCUMENTMERGER_ENGINE_EXPORT VSMMerger : public QObject {
    Q_OBJECT
public:
    explicit VSMMerger(QObject *parent = nullptr);
    ~VSMMerger() override;

    void start(const MergeTask &task);
    void cancel();
    bool isRunning() const;
    // True until every worker started here has ended its run, cancelled or not.
    bool hasLiveWorkers() const;

    // A new worker without a parent; the pool runs it and it deletes itself after its run.
    virtual InnerMerger *createWorker() = 0;

signals:
    void subProgress(int index, int percent);
    void overallProgress(int percent);
    void taskInitFinished();
    void mergeFinished(int result);
    void canceled();
    // The last live worker has ended its run; the word processor it started has been quit.
    void workersEnded();

protected slots:
    void onTaskFinished();

private:
    int m_runningCount = 0;
    InnerWorkerList m_liveWorkers;
};
