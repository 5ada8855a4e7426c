#pragma once

#include <QPointer>
#include <QVector>

#include <functional>

#include "vdocumentmerger_engine_export.h"

class InnerWorker;
class QObject;

// The workers of one front object whose run has not ended yet. Lives on the GUI thread.
class VDOCUMENTMERGER_ENGINE_EXPORT InnerWorkerList {
public:
    // onAllEnded runs on context's thread each time the last listed worker has ended.
    void add(InnerWorker *worker, QObject *context, std::function<void()> onAllEnded);
    bool isEmpty() const;
    // Sets the cancel flag of every listed worker without emitting anything.
    void cancelAll();

private:
    QVector<QPointer<InnerWorker>> m_workers;
};
