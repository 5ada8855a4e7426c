#pragma once

#include <QPointer>
#include <QStringList>
#include <QVariantMap>
#include <QVector>
#include <QWidget>

#include "engine/mergetask.h"
#include "vdocumentmerger_export.h"

class QVBoxLayout;
class VMFifleTableContentItem;
class VMFileTableStatusBar;
class VMFileTableWidget;
class VMProgressDlg;
class VSMInfoProvider;
class VSMMerger;

// The merge page: the file table with its status bar, the page-count provider and the merger.
// It takes files in (file dialog, drop, the host's start files, a second start), keeps their
// page counts current, and runs a merge from "start merge" to the opened result. Everything
// runs on the GUI thread; the workers report through queued signals. Destroying the page
// cancels any count or merge still running.
class VDOCUMENTMERGER_EXPORT VMFileListPage : public QWidget {
    Q_OBJECT
public:
    explicit VMFileListPage(QWidget *parent);
    ~VMFileListPage() override;

    VMFileTableWidget *fileTable() const;
    VMFileTableStatusBar *statusBar() const;
    int maxFileCount() const;

    // Lists the files that are not listed yet and counts their pages. origin: 0 import,
    // 1 file dialog, 2 drop. No limit and no suffix test here.
    void addFiles(const QStringList &files, int origin);
    // The too-many-files notice.
    void showFileLimitDialog(int maximum);
    // Cleans the host's arguments; the batch arrives later through onImportAddFiles().
    void importFiles(const QStringList &arguments);

signals:
    void sigSelectedItemCountChange(int selected, int total);

public slots:
    void onAddFile();
    void onImportAddFiles(QStringList fileList);
    void onClearList();
    void onStartMerger();
    void onSelectedItemCountChange(int selected, int total);
    void onInfoPageCount(QString filePath, bool success, int count);
    void onInfoTaskFinished(QStringList fileList, bool success);
    void onDoMerge();
    // Invoked by name by the progress dialog when the user closes it.
    void onMergeCancel();
    void onSubProgress(int index, int percent);
    void onTaskInitFinished();
    void onMergeFinished(int result);
    void onUploadFinished(QString requestId, bool taskSuccess, bool resultSuccess);
    void onOpenCloudFolderFinished(QString requestId, bool taskSuccess, bool resultSuccess);
    void onGetCachePathFinished(QString requestId, bool taskSuccess, bool resultSuccess, QString filePath);
    // Invoked by name by the host when the tool is started again.
    void onSecondInstance(QVariantMap argsMap);
    void onItemReload(VMFifleTableContentItem *fileListItem);

private:
    // The merge task last built, with the location it was built for.
    struct Task : MergeTask {
        int location = 0;
    };

    void addPendingRows();
    void startMerge();
    bool buildMergeTask();
    QString computeOutputPath() const;
    void sendAddFileEvent(const QStringList &fileList);
    void sendExportEvent(int seconds);
    // Accepts the progress dialog at 100 %; the seconds it was shown, 0 when it is gone.
    int closeProgress();
    void runResultAction(int choice, bool cloudTarget);
    void openMergedFile(const QString &path);

    void showMergeFailed();
    int showMergeComplete(const QString &content, bool cloudFail);
    void showDocumentMissing();
    int showLoginRequired();

    QVBoxLayout *m_layout = nullptr;
    VMFileTableWidget *m_fileTable = nullptr;
    VMFileTableStatusBar *m_statusBar = nullptr;
    int m_maxFileCount = 100;
    VSMInfoProvider *m_infoProvider = nullptr;
    bool m_merging = false;
    QPointer<VMProgressDlg> m_progressDialog;
    VSMMerger *m_merger = nullptr;
    Task m_task;
    // Guarded: a row that leaves the table during the run drops out of it.
    QVector<QPointer<VMFifleTableContentItem>> m_mergeRows;
    int m_initShare = 10;
    int m_finalShare = 1;
    QString m_uploadRequestId;
    QString m_openFolderRequestId;
    QString m_cachePathRequestId;
    int m_addOrigin = 0;
    int m_passMode = -1;
    // Accepted paths whose rows are still to be made, and the batch they belong to.
    QStringList m_rowsToAdd;
    QStringList m_batchToCount;
};
