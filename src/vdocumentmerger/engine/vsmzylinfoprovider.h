#pragma once

#include "engine/vsminfoprovider.h"

// Counts pages through the word processor's automation server.
class VDOCUMENTMERGER_ENGINE_EXPORT VSMZylInfoProvider : public VSMInfoProvider {
    Q_OBJECT
public:
    explicit VSMZylInfoProvider(QObject *parent = nullptr);
    ~VSMZylInfoProvider() override;

    InnerInfoProvider *createWorker() override;
};
