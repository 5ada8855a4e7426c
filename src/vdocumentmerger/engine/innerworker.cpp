#include "engine/innerworker.h"

#include <QReadLocker>
#include <QWriteLocker>

InnerWorker::InnerWorker()
{
    setAutoDelete(false);
}

InnerWorker::~InnerWorker() = default;

bool InnerWorker::isCanceled() const
{
    QReadLocker locker(&m_cancelLock);
    return m_canceled;
}

void InnerWorker::cancelTask()
{
    QWriteLocker locker(&m_cancelLock);
    m_canceled = true;
}

void InnerWorker::finishRun()
{
    emit ended();
    deleteLater();
}
