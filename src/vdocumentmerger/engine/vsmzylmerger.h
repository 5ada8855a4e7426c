#pragma once

#include "engine/vsmmerger.h"

// Merges through the word processor's automation server.
class VDOCUMENTMERGER_ENGINE_EXPORT VSMZylMerger : public VSMMerger {
    Q_OBJECT
public:
    explicit VSMZylMerger(QObject *parent = nullptr);
    ~VSMZylMerger() override;

    InnerMerger *createWorker() override;
};
