#pragma once

#include "engine/innerinfoprovider.h"
#include "engine/innerzylprocessor.h"

// Counts pages through the word processor: one application object per run, each file opened
// as it stands (never copied, never saved), protected documents refused.
class VDOCUMENTMERGER_ENGINE_EXPORT InnerZylInfoProvider : public InnerInfoProvider, public InnerZylProcessor {
    Q_OBJECT
public:
    explicit InnerZylInfoProvider(const QStringList &fileList = QStringList());
    ~InnerZylInfoProvider() override;

    int countPages(const QString &path, int &count) override;
    void run() override;
};
