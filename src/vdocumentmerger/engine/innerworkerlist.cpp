#include "engine/innerworkerlist.h"

#include "engine/innerworker.h"

void InnerWorkerList::add(InnerWorker *worker, QObject *context, std::function<void()> onAllEnded)
{
    m_workers.append(worker);
    QObject::connect(worker, &InnerWorker::ended, context, [this, worker, onAllEnded] {
        m_workers.removeAll(worker);
        m_workers.removeAll(nullptr);
        if (m_workers.isEmpty())
            onAllEnded();
    });
}

bool InnerWorkerList::isEmpty() const
{
    return m_workers.isEmpty();
}

void InnerWorkerList::cancelAll()
{
    for (const QPointer<InnerWorker> &worker : qAsConst(m_workers)) {
        if (worker)
            worker->cancelTask();
    }
}
