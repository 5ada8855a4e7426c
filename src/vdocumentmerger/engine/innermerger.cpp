#include "engine/innermerger.h"

#include <QReadLocker>
#include <QWriteLocker>

InnerMerger::InnerMerger()
{
    setAutoDelete(false);
}

InnerMerger::~InnerMerger() = default;

void InnerMerger::setTask(const MergeTask &task)
{
    m_items = task.items;
    m_outputPath = task.outputPath;
    m_workPath = task.workPath;
    m_convertFormat = task.convertFormat;
}

QList<MergeItem> InnerMerger::items() const
{
    return m_items;
}

QString InnerMerger::outputPath() const
{
    return m_outputPath;
}

QString InnerMerger::workPath() const
{
    return m_workPath;
}

bool InnerMerger::convertFormat() const
{
    return m_convertFormat;
}

bool InnerMerger::isCanceled() const
{
    QReadLocker locker(&m_cancelLock);
    return m_canceled;
}

void InnerMerger::cancelTask()
{
    QWriteLocker locker(&m_cancelLock);
    m_canceled = true;
}

void InnerMerger::finishRun()
{
    deleteLater();
}
