#pragma once

#include <QList>
#include <QObject>
#include <QReadWriteLock>
#include <QRunnable>

#include "engine/mergeitem.h"
#include "engine/mergetask.h"
#include "vdocumentmerger_export.h"

// Merge worker: builds one document from its items on a pool thread and reports finished(0)
// or finished(-99), unless cancelled, in which case it reports no result at all.
//
// Created without a parent on the GUI thread; not auto-deleted by the pool: run() ends with
// finishRun(), which has it deleted on its own thread once run() has returned.
class VDOCUMENTMERGER_EXPORT InnerMerger : public QObject, public QRunnable {
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

    bool isCanceled() const;

signals:
    void subProgress(int index, int percent);
    void overallProgress(int percent);
    void initFinished();
    void finished(int result);

protected slots:
    // Reached through the front object's canceled(), on the GUI thread.
    void cancelTask();

protected:
    // The last statement of run(): nothing of this object may be touched afterwards.
    void finishRun();

private:
    friend class VSMMerger;

    QList<MergeItem> m_items;
    QString m_outputPath;
    QString m_workPath;
    bool m_convertFormat = false;
    bool m_canceled = false;
    mutable QReadWriteLock m_cancelLock;
};
