#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include "engine/innerworkerlist.h"
#include "vdocumentmerger_engine_export.h"

class InnerInfoProvider;

// Page counts for a list of files, worked out on a pool thread; lives on the GUI thread.
//
// start() returns at once; infoPageCount arrives once per file, in list order, then
// infoTaskFinished. success in infoTaskFinished is false only when the word processor could not
// be started. cancel() settles every file that has no result yet as failed and finishes the
// list at once; the worker's later results are dropped. Destroying the object cancels its
// workers without reporting anything.
class VDOCUMENTMERGER_ENGINE_EXPORT VSMInfoProvider : public QObject {
    Q_OBJECT
public:
    explicit VSMInfoProvider(QObject *parent = nullptr);
    ~VSMInfoProvider() override;

    // An empty list does nothing.
    void start(const QStringList &files);
    void cancel();

    // True until every worker started here has ended its run, cancelled or not.
    bool hasLiveWorkers() const;

    // The latest worker; null once it has been destroyed.
    InnerInfoProvider *worker() const;

    // A new worker without a parent; the pool runs it and it deletes itself after its run.
    virtual InnerInfoProvider *createWorker() = 0;

signals:
    void infoTaskFinished(QStringList fileList, bool success);
    void infoPageCount(QString filePath, bool success, int count);
    void canceled();
    // The last live worker has ended its run; a word processor it started has been quit.
    void workersEnded();

private slots:
    void onTaskFinished(QStringList fileList, bool success);
    void onInfoPageCount(QString filePath, bool success, int count);

private:
    QStringList m_fileList;
    QHash<QString, bool> m_reported;
    QPointer<InnerInfoProvider> m_worker;
    InnerWorkerList m_liveWorkers;
};
