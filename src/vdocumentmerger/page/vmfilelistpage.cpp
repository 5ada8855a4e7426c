#include "page/vmfilelistpage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTime>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

#include "cloud/vmcloudhelper.h"
#include "engine/vmprogressdlg.h"
#include "engine/vsmzylinfoprovider.h"
#include "engine/vsmzylmerger.h"
#include "host/ivappcontainer.h"
#include "host/liolite.h"
#include "page/vmfilelistrules.h"
#include "shell/hostservices.h"
#include "shell/iappcontroller.h"
#include "shell/usageevents.h"
#include "shell/vmcontentskindlg.h"
#include "shell/vmenv.h"
#include "table/vmfifletablecontentitem.h"
#include "table/vmfiletablestatusbar.h"
#include "table/vmfiletablewidget.h"

namespace {

// Shared words; the caller marks the text with QT_TRANSLATE_NOOP so that lupdate finds it.
QString generalText(const char *text)
{
    return QCoreApplication::translate("general", text);
}

VMFileListRules::RowFacts rowFacts(const VMFifleTableContentItem *row)
{
    return {row->filePath(), row->isReadSuccess(), row->pageCount()};
}

} // namespace

VMFileListPage::VMFileListPage(QWidget *parent)
    : QWidget(parent)
{
    m_layout = new QVBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);

    m_fileTable = new VMFileTableWidget(this);
    m_statusBar = new VMFileTableStatusBar(this);
    m_statusBar->applyThemeClass(QStringLiteral("VMFileTableStatusBar"));
    m_statusBar->setFixedHeight(int(VLiteStyle::dpiScaled(40)));
    m_layout->addWidget(m_fileTable, 0);
    m_layout->addWidget(m_statusBar, 0);

    m_infoProvider = new VSMZylInfoProvider(this);
    m_merger = new VSMZylMerger(this);

    connect(m_statusBar, &VMFileTableStatusBar::sigAddFile, this, &VMFileListPage::onAddFile);
    connect(m_statusBar, &VMFileTableStatusBar::sigClearList, this, &VMFileListPage::onClearList);
    connect(m_fileTable, &VMFileTableWidget::sigSelectedItemCountChange, this,
            &VMFileListPage::onSelectedItemCountChange);
    connect(m_fileTable, &VMFileTableWidget::sigItemReload, this, &VMFileListPage::onItemReload);
    connect(m_infoProvider, &VSMInfoProvider::infoPageCount, this, &VMFileListPage::onInfoPageCount);
    connect(m_infoProvider, &VSMInfoProvider::infoTaskFinished, this, &VMFileListPage::onInfoTaskFinished);
    connect(m_merger, &VSMMerger::subProgress, this, &VMFileListPage::onSubProgress);
    connect(m_merger, &VSMMerger::taskInitFinished, this, &VMFileListPage::onTaskInitFinished);
    connect(m_merger, &VSMMerger::mergeFinished, this, &VMFileListPage::onMergeFinished);
    if (VMCloudHelper *cloud = VMCloudHelper::instance()) {
        connect(cloud, &VMCloudHelper::uploadFileFinished, this, &VMFileListPage::onUploadFinished);
        connect(cloud, &VMCloudHelper::openFolderFinished, this, &VMFileListPage::onOpenCloudFolderFinished);
        connect(cloud, &VMCloudHelper::getCachePathFinished, this, &VMFileListPage::onGetCachePathFinished);
    }

    IAppController *controller = appController();
    if (AppFrameWork::IVAppContainer *container = controller ? controller->container() : nullptr) {
        container->subscribe(QStringLiteral("SecondInstance"), this, "onSecondInstance");
        if (const AppFrameWork::VAppStartInfo *info = container->startInfo())
            importFiles(info->files);
    }
}

VMFileListPage::~VMFileListPage()
{
    m_merging = false;
    m_passMode = -1;
    m_infoProvider->cancel();
    if (m_merger->isRunning())
        m_merger->cancel();
}

VMFileTableWidget *VMFileListPage::fileTable() const
{
    return m_fileTable;
}

VMFileTableStatusBar *VMFileListPage::statusBar() const
{
    return m_statusBar;
}

int VMFileListPage::maxFileCount() const
{
    return m_maxFileCount;
}

void VMFileListPage::onAddFile()
{
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("addfile")}});
    const QStringList picked = QFileDialog::getOpenFileNames(
        this, generalText(QT_TRANSLATE_NOOP("general", "document merger")),
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
        VMFileListRules::fileDialogFilter());
    if (picked.isEmpty())
        return;
    if (picked.size() + m_fileTable->itemCount() <= m_maxFileCount)
        addFiles(picked, 1);
    else
        showFileLimitDialog(m_maxFileCount);
}

void VMFileListPage::addFiles(const QStringList &files, int origin)
{
    if (!m_fileTable)
        return;
    QStringList existing = m_rowsToAdd;
    for (int i = 0; i < m_fileTable->itemCount(); ++i) {
        if (VMFifleTableContentItem *row = m_fileTable->itemAt(i))
            existing.append(row->filePath());
    }
    const QStringList accepted = VMFileListRules::acceptedKeys(existing, files);
    if (accepted.isEmpty())
        return;
    m_addOrigin = origin;
    const bool idle = m_rowsToAdd.isEmpty();
    m_rowsToAdd += accepted;
    m_batchToCount += accepted;
    if (idle)
        addPendingRows();
}

// A large batch enters a slice per turn of the event loop, so that the window keeps answering;
// its count starts once every row of it is there to take a result.
void VMFileListPage::addPendingRows()
{
    if (!m_fileTable)
        return;
    const QStringList slice = m_rowsToAdd.mid(0, VMFileTableWidget::RowsPerStep);
    m_rowsToAdd.erase(m_rowsToAdd.begin(), m_rowsToAdd.begin() + slice.size());
    for (const QString &key : slice)
        m_fileTable->addFile(key);
    if (!m_rowsToAdd.isEmpty()) {
        QTimer::singleShot(0, this, &VMFileListPage::addPendingRows);
        return;
    }
    const QStringList batch = std::exchange(m_batchToCount, QStringList());
    m_passMode = 0;
    m_infoProvider->start(batch);
    m_fileTable->updateHeaderCheckState();
    emit m_fileTable->sigFilesAdded();
}

void VMFileListPage::showFileLimitDialog(int maximum)
{
    VMContentSkinDlg::runNotice(this, VLiteContentDlg::IconNone, generalText(QT_TRANSLATE_NOOP("general", "Tips")),
                     tr("No more than %1 files can be added, and the excess part has not been added "
                        "to the list. It is recommended to process them in batches.")
                         .arg(maximum),
                     QStringLiteral("wrong_num"));
}

void VMFileListPage::importFiles(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return;
    m_addOrigin = 0;
    const QStringList kept = VMFileListRules::cleanImportArguments(arguments);
    if (!kept.isEmpty())
        QMetaObject::invokeMethod(this, "onImportAddFiles", Qt::QueuedConnection, Q_ARG(QStringList, kept));
}

void VMFileListPage::onImportAddFiles(QStringList fileList)
{
    addFiles(fileList, 0);
}

void VMFileListPage::onSecondInstance(QVariantMap argsMap)
{
    const QJsonDocument document =
        QJsonDocument::fromJson(argsMap.value(QStringLiteral("args")).toString().toUtf8());
    if (document.isNull() || !document.isObject())
        return;
    const QJsonObject object = document.object();
    if (!object.contains(QStringLiteral("file")))
        return;
    const QString files = object.value(QStringLiteral("file")).toString();
    if (files.isEmpty())
        return;
    importFiles(files.split(QLatin1Char('|')));
}

void VMFileListPage::onInfoPageCount(QString filePath, bool success, int count)
{
    VMFifleTableContentItem *row = m_fileTable->findItem(filePath);
    if (!row)
        return;
    if (m_passMode == -1) {
        if (row->isLoading())
            row->stopLoading();
        return;
    }
    if (success) {
        row->applyPageCount(count);
    } else {
        sendUsageEvent(QStringLiteral("vas_wordmerge_parsefail"), {{QStringLiteral("action"), QStringLiteral("show")}});
        row->setReadSuccess(false);
    }
}

void VMFileListPage::onInfoTaskFinished(QStringList fileList, bool success)
{
    if (fileList.isEmpty())
        return;
    if (!success) {
        for (const QString &path : fileList) {
            VMFifleTableContentItem *row = m_fileTable->findItem(path);
            if (!row)
                continue;
            if (m_passMode != -1) {
                sendUsageEvent(QStringLiteral("vas_wordmerge_parsefail"),
                               {{QStringLiteral("action"), QStringLiteral("show")}});
                row->setReadSuccess(false);
            } else if (row->isLoading()) {
                row->stopLoading();
            }
        }
    }
    if (m_merging) {
        m_merging = false;
        bool ready = true;
        for (const QString &path : fileList) {
            const VMFifleTableContentItem *row = m_fileTable->findItem(path);
            ready = ready && row && row->isReadSuccess();
        }
        if (ready) {
            startMerge();
        } else {
            if (m_progressDialog)
                m_progressDialog->accept();
            showMergeFailed();
        }
    }
    if (m_passMode == 0)
        sendAddFileEvent(fileList);
    m_passMode = -1;
}

void VMFileListPage::sendAddFileEvent(const QStringList &fileList)
{
    QList<VMFifleTableContentItem *> rows;
    m_fileTable->itemsForPaths(fileList, rows);
    if (rows.isEmpty())
        return;
    QList<VMFileListRules::RowFacts> facts;
    for (const VMFifleTableContentItem *row : qAsConst(rows))
        facts.append(rowFacts(row));
    sendUsageEvent(QStringLiteral("vas_wordmerge_addfile"), VMFileListRules::addFileParams(m_addOrigin, facts));
}

void VMFileListPage::onItemReload(VMFifleTableContentItem *fileListItem)
{
    if (!fileListItem || fileListItem->isLoading() || m_passMode != -1)
        return;
    fileListItem->startLoading();
    m_passMode = 2;
    m_infoProvider->start({VMFileListRules::pathKey(fileListItem->filePath())});
}

void VMFileListPage::onClearList()
{
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("deletefile ")}});
    VMContentSkinDlg dialog(this, VLiteContentDlg::IconNone);
    dialog.setTitle(generalText(QT_TRANSLATE_NOOP("general", "Tips")));
    dialog.setButtonText(VLiteContentDlg::BtnConfirm, generalText(QT_TRANSLATE_NOOP("general", "Confirm")));
    dialog.setButtonResult(VLiteContentDlg::BtnConfirm, 1);
    dialog.setButtonText(VLiteContentDlg::BtnCancel, generalText(QT_TRANSLATE_NOOP("general", "Cancel")));
    dialog.setButtonResult(VLiteContentDlg::BtnCancel, 0);
    dialog.setButtonVisible(VLiteContentDlg::BtnThird, false);
    dialog.setContent(tr("Remove selected %1 files from the list?").arg(m_fileTable->checkedCount()));
    dialog.setTitleHitTest(true);
    if (dialog.exec() == 1 && m_fileTable)
        m_fileTable->removeSelected();
}

void VMFileListPage::onSelectedItemCountChange(int selected, int total)
{
    m_statusBar->updateSelectedCount(selected, total);
    emit sigSelectedItemCountChange(selected, total);
}

void VMFileListPage::onStartMerger()
{
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("start_up")}});
    if (!isLoggedIn()) {
        requestLogin();
        return;
    }
    if (!m_fileTable)
        return;
    QList<VMFifleTableContentItem *> checked;
    m_fileTable->checkedItems(checked);
    m_mergeRows.clear();
    QStringList keys;
    int totalPages = 0;
    for (VMFifleTableContentItem *row : qAsConst(checked)) {
        m_mergeRows.append(row);
        keys.append(VMFileListRules::pathKey(row->filePath()));
        totalPages += row->pageCount();
    }
    if (keys.isEmpty())
        return;
    m_passMode = 1;
    m_infoProvider->start(keys);
    m_merging = true;
    m_progressDialog = VMProgressDlg::showMergeProgress(this, this, totalPages);
}

void VMFileListPage::onDoMerge()
{
    startMerge();
}

void VMFileListPage::startMerge()
{
    if (!buildMergeTask())
        return;
    QFileInfo(m_task.outputPath).absoluteDir().mkpath(QStringLiteral("."));
    m_initShare = VMFileListRules::initShare(m_task.items.size());
    if (m_progressDialog)
        m_progressDialog->setProgress(0);
    m_merger->start(m_task);
}

bool VMFileListPage::buildMergeTask()
{
    m_task.location = VMEnv::instance()->location();
    m_task.items.clear();
    m_task.outputPath = computeOutputPath();
    if (m_task.outputPath.isEmpty())
        return false;
    m_task.workPath.clear();
    if (!m_mergeRows.isEmpty() && m_mergeRows.first()) {
        const QFileInfo first(m_mergeRows.first()->filePath());
        m_task.workPath = VMEnv::workFilePath(first.completeBaseName(), first.suffix(), 2);
    }
    if (m_task.workPath.isEmpty())
        return false;
    for (const QPointer<VMFifleTableContentItem> &row : qAsConst(m_mergeRows)) {
        if (row)
            m_task.items.append({row->rangeFrom(), row->rangeTo(), row->filePath()});
    }
    m_task.convertFormat = QFileInfo(m_task.workPath).suffix() != QFileInfo(m_task.outputPath).suffix();
    return true;
}

QString VMFileListPage::computeOutputPath() const
{
    if (m_mergeRows.isEmpty() || !m_mergeRows.first())
        return QString();
    const QFileInfo first(m_mergeRows.first()->filePath());
    VMEnv *env = VMEnv::instance();
    const int location = env->location();
    QString folder;
    if (location == 2)
        folder = VMEnv::tempRoot();
    else if (location == 1)
        folder = QDir::fromNativeSeparators(env->customDir());
    else
        folder = first.absolutePath();
    const QString name = env->outputName().isEmpty() ? first.completeBaseName() : env->outputName();
    return VMFileListRules::outputPath(folder, name, env->outputSuffix(), location,
                                       QDateTime::currentDateTime());
}

void VMFileListPage::onTaskInitFinished()
{
    if (m_progressDialog)
        m_progressDialog->setProgress(m_initShare);
}

void VMFileListPage::onSubProgress(int index, int percent)
{
    const int n = m_task.items.size();
    if (n > 0 && m_progressDialog)
        m_progressDialog->setProgress(VMFileListRules::progressValue(index, percent, n, m_initShare, m_finalShare));
}

void VMFileListPage::onMergeCancel()
{
    m_merging = false;
    m_passMode = -1;
    m_infoProvider->cancel();
    if (m_merger->isRunning())
        m_merger->cancel();
}

int VMFileListPage::closeProgress()
{
    if (!m_progressDialog)
        return 0;
    m_progressDialog->setProgress(100);
    const int seconds = m_progressDialog->showTime().secsTo(QTime::currentTime());
    m_progressDialog->accept();
    return seconds;
}

void VMFileListPage::onMergeFinished(int result)
{
    if (result != 0) {
        closeProgress();
        showMergeFailed();
        return;
    }
    if (m_task.location != 2) {
        sendExportEvent(closeProgress());
        runResultAction(showMergeComplete(m_task.outputPath, false), false);
        return;
    }
    if (QFile::exists(m_task.outputPath)) {
        VMCloudHelper *cloud = VMCloudHelper::instance();
        m_uploadRequestId = cloud ? cloud->uploadFilesToCloud(m_task.outputPath, cloud->cloudFolderPath())
                                  : QString();
        if (!m_uploadRequestId.isEmpty())
            return;
    }
    m_uploadRequestId = QStringLiteral("MergeUploadFailed");
    onUploadFinished(m_uploadRequestId, false, false);
}

void VMFileListPage::onUploadFinished(QString requestId, bool taskSuccess, bool resultSuccess)
{
    if (requestId.isEmpty() || requestId != m_uploadRequestId)
        return;
    const int seconds = closeProgress();
    const QString fileName = QFileInfo(m_task.outputPath).fileName();
    QString content;
    const bool cloudFail = !(taskSuccess && resultSuccess);
    if (!cloudFail) {
        content = QDir::fromNativeSeparators(VMCloudHelper::instance()->cloudPathDisplayText())
            + QStringLiteral("/") + fileName;
    } else {
        const QString firstFile = m_task.items.isEmpty() ? QString() : m_task.items.first().filePath;
        const QString dest = QDir(QFileInfo(firstFile).absolutePath()).absoluteFilePath(fileName);
        QFile::copy(m_task.outputPath, dest);
        m_task.location = 0;
        m_task.outputPath = dest;
        content = tr("Failed to upload %1, automatically saved to:").arg(yrt::product::getZYLDriveDisplayName())
            + m_task.outputPath;
    }
    sendExportEvent(seconds);
    runResultAction(showMergeComplete(content, cloudFail), !cloudFail);
}

void VMFileListPage::sendExportEvent(int seconds)
{
    QList<VMFileListRules::RowFacts> rows;
    for (const MergeItem &item : qAsConst(m_task.items)) {
        const VMFifleTableContentItem *row = m_fileTable->findItem(item.filePath);
        rows.append(row ? rowFacts(row) : VMFileListRules::RowFacts());
    }
    sendUsageEvent(QStringLiteral("vas_wordmerge_export"),
                   VMFileListRules::exportParams(m_task.items, rows, seconds, m_task.location, m_task.outputPath));
}

void VMFileListPage::runResultAction(int choice, bool cloudTarget)
{
    if (choice != VLiteContentDlg::BtnConfirm && choice != VLiteContentDlg::BtnCancel)
        return;
    const bool openFile = choice == VLiteContentDlg::BtnConfirm;
    if (!cloudTarget) {
        if (openFile)
            openMergedFile(m_task.outputPath);
        else if (!VMEnv::showInExplorer(m_task.outputPath))
            showDocumentMissing();
        return;
    }
    if (!isLoggedIn()) {
        if (showLoginRequired() == 1)
            requestLogin();
        return;
    }
    VMCloudHelper *cloud = VMCloudHelper::instance();
    if (openFile) {
        m_cachePathRequestId = cloud ? cloud->getCloudFileCachePath(cloud->cloudFolderPath(),
                                                                    QFileInfo(m_task.outputPath).fileName())
                                     : QString();
        if (m_cachePathRequestId.isEmpty()) {
            m_cachePathRequestId = QStringLiteral("MergeOpenCloudFileFailed");
            showDocumentMissing();
        }
    } else {
        m_openFolderRequestId = cloud ? cloud->openVirtualCloudDisk(cloud->cloudFolderPath(), true) : QString();
        if (m_openFolderRequestId.isEmpty()) {
            m_openFolderRequestId = QStringLiteral("MergeOpenCloudFolderFailed");
            showDocumentMissing();
        }
    }
}

void VMFileListPage::onGetCachePathFinished(QString requestId, bool taskSuccess, bool resultSuccess,
                                            QString filePath)
{
    if (requestId.isEmpty() || requestId != m_cachePathRequestId)
        return;
    if (taskSuccess && resultSuccess && QFile::exists(filePath))
        openMergedFile(filePath);
    else
        showDocumentMissing();
}

void VMFileListPage::onOpenCloudFolderFinished(QString requestId, bool taskSuccess, bool resultSuccess)
{
    if (requestId.isEmpty() || requestId != m_openFolderRequestId)
        return;
    if (!(taskSuccess && resultSuccess))
        showDocumentMissing();
}

void VMFileListPage::openMergedFile(const QString &path)
{
    if (path.isEmpty())
        return;
    if (!QFile::exists(path))
        showDocumentMissing();
    else
        VMEnv::openDocument(path);
}

void VMFileListPage::showMergeFailed()
{
    VMContentSkinDlg::runNotice(this, VLiteContentDlg::IconFailure, tr("Merge failed"),
                     tr("Failed to merge the current document, Please set it again"), QStringLiteral("fail"));
}

int VMFileListPage::showMergeComplete(const QString &content, bool cloudFail)
{
    VMContentSkinDlg dialog(this, cloudFail ? VLiteContentDlg::IconNone : VLiteContentDlg::IconSuccess);
    dialog.setTitle(cloudFail ? generalText(QT_TRANSLATE_NOOP("general", "Tips")) : tr("Merge complete"));
    dialog.setContent(content);
    dialog.setButtonText(VLiteContentDlg::BtnConfirm, generalText(QT_TRANSLATE_NOOP("general", "open file")));
    dialog.setButtonResult(VLiteContentDlg::BtnConfirm, 1);
    dialog.setButtonText(VLiteContentDlg::BtnCancel, tr("open directory"));
    dialog.setButtonResult(VLiteContentDlg::BtnCancel, 1);
    dialog.setButtonVisible(VLiteContentDlg::BtnThird, false);
    dialog.setTitleHitTest(true);
    const QString popupType = cloudFail ? QStringLiteral("cloud_fail") : QStringLiteral("done");
    sendPopupEvent(popupType, QStringLiteral("show"));
    const int result = dialog.exec();
    sendPopupEvent(popupType, result == VLiteContentDlg::ResultClosed ? QStringLiteral("click_close")
                                                                       : QStringLiteral("click_openfile"));
    return dialog.clickedButton();
}

void VMFileListPage::showDocumentMissing()
{
    VMContentSkinDlg::runNotice(this, VLiteContentDlg::IconNone, generalText(QT_TRANSLATE_NOOP("general", "Tips")),
                     tr("The document does not exist. It may be removed or renamed"),
                     QStringLiteral("finish_openfile_fail"));
}

int VMFileListPage::showLoginRequired()
{
    return VMContentSkinDlg::runNotice(this, VLiteContentDlg::IconNone, generalText(QT_TRANSLATE_NOOP("general", "Tips")),
                            tr("Sorry! You need to login in order to use %1.")
                                .arg(yrt::product::getZYLDriveDisplayName()),
                            QString());
}
