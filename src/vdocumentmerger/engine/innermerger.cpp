#include "engine/innermerger.h"

InnerMerger::InnerMerger() = default;

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
