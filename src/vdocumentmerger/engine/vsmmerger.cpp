#include "engine/vsmmerger.h"

#include <QThreadPool>

#include "engine/innermerger.h"

VSMMerger::VSMMerger(QObject *parent)
    : QObject(parent)
{
}

VSMMerger::~VSMMerger()
{
    m_liveWorkers.cancelAll();
}

void VSMMerger::start(const MergeTask &task)
{
    InnerMerger *worker = createWorker();
    if (!worker)
        return;
    // onTaskFinished is connected before mergeFinished, so the count is down when the result
    // is handled.
    connect(this, &VSMMerger::canceled, worker, &InnerMerger::cancelTask);
    connect(worker, &InnerMerger::finished, this, &VSMMerger::onTaskFinished);
    connect(worker, &InnerMerger::subProgress, this, &VSMMerger::subProgress);
    connect(worker, &InnerMerger::overallProgress, this, &VSMMerger::overallProgress);
    connect(worker, &InnerMerger::initFinished, this, &VSMMerger::taskInitFinished);
    connect(worker, &InnerMerger::finished, this, &VSMMerger::mergeFinished);
    worker->setTask(task);
    ++m_runningCount;
    m_liveWorkers.add(worker, this, [this] { emit workersEnded(); });
    QThreadPool::globalInstance()->start(worker, 0);
}

void VSMMerger::cancel()
{
    emit canceled();
}

bool VSMMerger::isRunning() const
{
    return m_runningCount != 0;
}

bool VSMMerger::hasLiveWorkers() const
{
    return !m_liveWorkers.isEmpty();
}

void VSMMerger::onTaskFinished()
{
    --m_runningCount;
}
