#include "engine/vsmzylmerger.h"

#include "engine/innerzylmerger.h"

VSMZylMerger::VSMZylMerger(QObject *parent)
    : VSMMerger(parent)
{
}

VSMZylMerger::~VSMZylMerger() = default;

InnerMerger *VSMZylMerger::createWorker()
{
    return new InnerZylMerger();
}
