#pragma once

#include <QObject>
#include <QReadWriteLock>
#include <QRunnable>
#include <QStringList>

#include "vdocumentmerger_export.h"

// Page-count worker: counts the pages of each file of its list on a pool thread and reports
// one infoPageCount per file, then taskFinished, unless cancelled.
//
// Created without a parent on the GUI thread. It is not auto-deleted by the pool: a subclass's
// run() ends with finishRun(), which has it deleted on its own thread once run() has returned,
// so that the GUI thread never sees it half destroyed.
class VDOCUMENTMERGER_EXPORT InnerInfoProvider : public QObject, public QRunnable {
    Q_OBJECT
public:
    explicit InnerInfoProvider(const QStringList &fileList = QStringList());
    ~InnerInfoProvider() override;

    QStringList fileList() const;
    void setFileList(const QStringList &fileList);

    // 0 on success with count set, -99 on failure.
    virtual int countPages(const QString &path, int &count) = 0;

    bool isCanceled() const;

signals:
    void taskFinished(QStringList fileList, bool success);
    void infoPageCount(QString filePath, bool success, int count);

protected slots:
    // Reached through the front object's canceled(), on the GUI thread.
    void cancelTask();

protected:
    // The last statement of run(): nothing of this object may be touched afterwards.
    void finishRun();

private:
    friend class VSMInfoProvider;

    QStringList m_fileList;
    bool m_canceled = false;
    mutable QReadWriteLock m_cancelLock;
};
