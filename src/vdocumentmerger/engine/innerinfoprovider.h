#pragma once

#include <QStringList>

#include "engine/innerworker.h"
#include "vdocumentmerger_engine_export.h"

// Page-count worker: counts the pages of each file of its list on a pool thread and reports
// one infoPageCount per file, then taskFinished, unless cancelled.
class VDOCUMENTMERGER_ENGINE_EXPORT InnerInfoProvider : public InnerWorker {
    Q_OBJECT
public:
    explicit InnerInfoProvider(const QStringList &fileList = QStringList());
    ~InnerInfoProvider() override;

    QStringList fileList() const;
    void setFileList(const QStringList &fileList);

    // 0 on success with count set, -99 on failure.
    virtual int countPages(const QString &path, int &count) = 0;

signals:
    void taskFinished(QStringList fileList, bool success);
    void infoPageCount(QString filePath, bool success, int count);

private:
    friend class VSMInfoProvider;

    QStringList m_fileList;
};
