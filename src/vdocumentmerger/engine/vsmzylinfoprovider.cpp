#include "engine/vsmzylinfoprovider.h"

#include "engine/innerzylinfoprovider.h"

VSMZylInfoProvider::VSMZylInfoProvider(QObject *parent)
    : VSMInfoProvider(parent)
{
}

VSMZylInfoProvider::~VSMZylInfoProvider() = default;

InnerInfoProvider *VSMZylInfoProvider::createWorker()
{
    return new InnerZylInfoProvider();
}
