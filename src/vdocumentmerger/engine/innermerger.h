#pragma once

#include <QList>

#include "engine/innerworker.h"
#include "engine/mergeitem.h"
#include "engine/mergetask.h"
#include "vdocumentmerger_engine_export.h"

// Merge worker: builds one document from its items on a pool thread and reports finished(0)
// or finished(-99), unless cancelled, in which case it reports no result at all.
class VDOCUMENTMERGER_ENGINE_EXPORT InnerMerger : public InnerWorker {
    Q_OBJECT
public:
    InnerMerger();
    ~InnerMerger() override;

    void setTask(const MergeTask &task);
    QList<MergeItem> items() const;
    QString outputPath() const;
    QString workPath() const;
    bool convertFormat() const;

    // 0 when the merged document was saved at outputPath, else -99.
    virtual int merge() = 0;

signals:
    void subProgress(int index, int percent);
    void overallProgress(int percent);
    void initFinished();
    void finished(int result);

private:
    friend class VSMMerger;

    QList<MergeItem> m_items;
    QString m_outputPath;
    QString m_workPath;
    bool m_convertFormat = false;
};
