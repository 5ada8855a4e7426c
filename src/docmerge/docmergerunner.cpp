#include "docmergerunner.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "engine/vsmzylinfoprovider.h"
#include "engine/vsmzylmerger.h"
#include "shell/vmworkfolders.h"

namespace {

const int kFinalShare = 1;

void print(FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

QString rangeText(const MergeSource &source)
{
    if (source.to() == MergeSource::kLastPage)
        return QStringLiteral("%1-").arg(source.from());
    return QStringLiteral("%1-%2").arg(source.from()).arg(source.to());
}

} // namespace

DocMergeRunner::DocMergeRunner(const DocMergeOptions &options, FILE *out, FILE *err, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_out(out)
    , m_err(err)
    , m_progress(err)
{
}

DocMergeRunner::~DocMergeRunner() = default;

MergeTask DocMergeRunner::buildTask(const QList<MergeSource> &sources, const QString &outputPath)
{
    MergeTask task;
    task.outputPath = QFileInfo(outputPath).absoluteFilePath();
    for (const MergeSource &source : sources) {
        MergeItem item;
        item.from = source.from();
        item.to = source.to();
        item.filePath = QFileInfo(source.path()).absoluteFilePath();
        task.items << item;
    }
    if (!task.items.isEmpty()) {
        const QFileInfo first(task.items.first().filePath);
        task.workPath = VMWorkFolders::filePath(first.completeBaseName(), first.suffix(), 2,
                                                 QDateTime::currentDateTime());
    }
    task.convertFormat = QFileInfo(task.workPath).suffix() != QFileInfo(task.outputPath).suffix();
    return task;
}

int DocMergeRunner::initShare(int sourceCount)
{
    return sourceCount > 0 ? int(1.0 / (sourceCount + 1) * 100.0) : 0;
}

int DocMergeRunner::progressValue(int index, int percent, int sourceCount)
{
    if (sourceCount <= 0)
        return 0;
    const int init = initShare(sourceCount);
    return int((double(index) / sourceCount) * (percent / 100.0) * (100 - kFinalShare - init) + init);
}

void DocMergeRunner::start()
{
    switch (m_options.command()) {
    case DocMergeOptions::Command::Count:
        startCount();
        break;
    case DocMergeOptions::Command::Merge:
        startMerge();
        break;
    default:
        finishWhenIdle(UsageError);
        break;
    }
}

void DocMergeRunner::cancel(int signalNumber)
{
    // Once the result is in, only the workers' ending is awaited: nothing left to stop.
    if (m_canceled || m_finishing)
        return;
    m_canceled = true;
    m_progress.clear();
    print(m_err, QStringLiteral("docmerge: interrupted, stopping the word processor\n"));
    if (m_provider)
        m_provider->cancel();
    if (m_merger && m_merger->isRunning())
        m_merger->cancel();
    finishWhenIdle(128 + signalNumber);
}

void DocMergeRunner::startCount()
{
    const QStringList files = m_options.files();
    QStringList paths;
    for (const QString &file : files) {
        CountEntry entry;
        entry.argument = file;
        entry.absolutePath = QFileInfo(file).absoluteFilePath();
        m_entries << entry;
        paths << entry.absolutePath;
    }
    m_provider = new VSMZylInfoProvider(this);
    connect(m_provider.data(), &VSMInfoProvider::infoPageCount, this, &DocMergeRunner::onPageCount);
    connect(m_provider.data(), &VSMInfoProvider::infoTaskFinished, this,
            [this](const QStringList &, bool success) { onCountFinished(success); });
    m_provider->start(paths);
}

void DocMergeRunner::onPageCount(const QString &path, bool success, int count)
{
    if (m_canceled)
        return;
    for (CountEntry &entry : m_entries) {
        if (entry.done || entry.absolutePath != path)
            continue;
        entry.done = true;
        entry.success = success;
        entry.pages = count;
        if (!m_options.json()) {
            print(m_out, QStringLiteral("%1\t%2\n")
                             .arg(success ? QString::number(count) : QStringLiteral("fail"), entry.argument));
        }
        return;
    }
}

void DocMergeRunner::onCountFinished(bool success)
{
    if (m_canceled)
        return;
    if (!success)
        print(m_err, QStringLiteral("docmerge: the word processor (VZyl.Application) cannot be started\n"));
    bool all = success;
    for (CountEntry &entry : m_entries) {
        if (!entry.done) {
            entry.done = true;
            if (!m_options.json())
                print(m_out, QStringLiteral("fail\t%1\n").arg(entry.argument));
        }
        all = all && entry.success;
    }
    if (m_options.json())
        printCountJson(success);
    finishWhenIdle(all ? Success : Failure);
}

void DocMergeRunner::printCountJson(bool serverStarted)
{
    QJsonArray files;
    bool all = serverStarted;
    for (const CountEntry &entry : qAsConst(m_entries)) {
        QJsonObject file;
        file.insert(QStringLiteral("path"), entry.argument);
        file.insert(QStringLiteral("success"), entry.success);
        file.insert(QStringLiteral("pages"), entry.success ? QJsonValue(entry.pages) : QJsonValue());
        files.append(file);
        all = all && entry.success;
    }
    QJsonObject root;
    root.insert(QStringLiteral("command"), QStringLiteral("count"));
    root.insert(QStringLiteral("success"), all);
    if (!serverStarted)
        root.insert(QStringLiteral("error"), QStringLiteral("the word processor cannot be started"));
    root.insert(QStringLiteral("files"), files);
    print(m_out, QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented)));
}

void DocMergeRunner::startMerge()
{
    const QList<MergeSource> sources = m_options.sources();
    const QFileInfo output(m_options.output());
    m_outputExisted = output.exists() || output.isSymLink();
    if (m_outputExisted) {
        failMerge(QStringLiteral("the output already exists and is never overwritten: %1").arg(m_options.output()));
        return;
    }
    for (const MergeSource &source : sources) {
        if (!QFileInfo(source.path()).isFile()) {
            failMerge(QStringLiteral("no such file: %1").arg(source.path()), source.path());
            return;
        }
        if (source.to() < source.from()) {
            failMerge(QStringLiteral("the page range %1 of %2 ends before it starts")
                          .arg(rangeText(source), source.path()));
            return;
        }
    }
    if (!QDir().mkpath(output.absolutePath())) {
        failMerge(QStringLiteral("cannot create the output folder %1").arg(output.absolutePath()));
        return;
    }

    m_task = buildTask(sources, m_options.output());
    if (m_task.workPath.isEmpty()) {
        failMerge(QStringLiteral("cannot create a private working folder under %1").arg(QDir::tempPath()));
        return;
    }
    m_merger = new VSMZylMerger(this);
    connect(m_merger.data(), &VSMMerger::taskInitFinished, this, &DocMergeRunner::onMergeInit);
    connect(m_merger.data(), &VSMMerger::subProgress, this, &DocMergeRunner::onSubProgress);
    connect(m_merger.data(), &VSMMerger::mergeFinished, this, &DocMergeRunner::onMergeFinished);
    m_progress.show(0, QStringLiteral("starting the word processor"));
    m_merger->start(m_task);
}

void DocMergeRunner::onMergeInit()
{
    if (!m_canceled)
        m_progress.show(initShare(m_task.items.size()), QStringLiteral("0/%1 sources").arg(m_task.items.size()));
}

void DocMergeRunner::onSubProgress(int index, int percent)
{
    if (!m_canceled) {
        const int n = m_task.items.size();
        m_progress.show(progressValue(index, percent, n), QStringLiteral("%1/%2 sources").arg(index).arg(n));
    }
}

void DocMergeRunner::onMergeFinished(int result)
{
    if (m_canceled)
        return;
    if (result == 0) {
        m_progress.show(100, QStringLiteral("done"));
        m_progress.clear();
        if (m_options.json())
            printMergeJson(true, QString(), QString());
        else
            print(m_out, QStringLiteral("%1\n").arg(m_task.outputPath));
        finishWhenIdle(Success);
        return;
    }
    m_progress.clear();
    removeUnwantedOutput();
    diagnose();
}

// The merger says only that it failed; count the sources to tell the user which one is at fault.
void DocMergeRunner::diagnose()
{
    QStringList paths;
    for (const MergeItem &item : qAsConst(m_task.items))
        paths << item.filePath;
    paths.removeDuplicates();
    m_entries.clear();
    for (const QString &path : qAsConst(paths)) {
        CountEntry entry;
        entry.absolutePath = path;
        m_entries << entry;
    }
    m_provider = new VSMZylInfoProvider(this);
    connect(m_provider.data(), &VSMInfoProvider::infoPageCount, this,
            [this](const QString &path, bool success, int count) {
                for (CountEntry &entry : m_entries) {
                    if (entry.absolutePath == path && !entry.done) {
                        entry.done = true;
                        entry.success = success;
                        entry.pages = count;
                        break;
                    }
                }
            });
    connect(m_provider.data(), &VSMInfoProvider::infoTaskFinished, this,
            [this](const QStringList &, bool success) { onDiagnosisFinished(success); });
    m_provider->start(paths);
}

void DocMergeRunner::onDiagnosisFinished(bool success)
{
    if (m_canceled)
        return;
    if (!success) {
        failMerge(QStringLiteral("the word processor (VZyl.Application) cannot be started"));
        return;
    }
    const QList<MergeSource> sources = m_options.sources();
    for (int i = 0; i < sources.size() && i < m_task.items.size(); ++i) {
        const MergeItem &item = m_task.items.at(i);
        for (const CountEntry &entry : qAsConst(m_entries)) {
            if (entry.absolutePath != item.filePath)
                continue;
            if (!entry.success) {
                failMerge(QStringLiteral("cannot read %1: missing, damaged, protected or not a document")
                              .arg(sources.at(i).path()),
                          sources.at(i).path());
                return;
            }
            if (item.from > entry.pages) {
                failMerge(QStringLiteral("%1 has %2 page(s); the range %3 starts past its end")
                              .arg(sources.at(i).path())
                              .arg(entry.pages)
                              .arg(rangeText(sources.at(i))),
                          sources.at(i).path());
                return;
            }
        }
    }
    probeSource(0);
}

// Every source reads: merge each one's range with itself, alone, to find the one whose pages the
// word processor cannot cut.
void DocMergeRunner::probeSource(int index)
{
    const QList<MergeSource> sources = m_options.sources();
    if (index >= sources.size()) {
        failMerge(QStringLiteral("the word processor could not merge the documents"));
        return;
    }
    m_probeIndex = index;
    const MergeSource &source = sources.at(index);
    const MergeTask probe = buildTask({source, source},
                                      VMWorkFolders::filePath(QStringLiteral("probe"), QFileInfo(source.path()).suffix(), 0, QDateTime::currentDateTime()));
    if (probe.workPath.isEmpty() || probe.outputPath.isEmpty()) {
        failMerge(QStringLiteral("the word processor could not merge the documents"));
        return;
    }
    m_merger = new VSMZylMerger(this);
    connect(m_merger.data(), &VSMMerger::mergeFinished, this, &DocMergeRunner::onProbeFinished);
    m_merger->start(probe);
}

void DocMergeRunner::onProbeFinished(int result)
{
    if (m_canceled)
        return;
    if (result == 0) {
        probeSource(m_probeIndex + 1);
        return;
    }
    const MergeSource source = m_options.sources().at(m_probeIndex);
    failMerge(QStringLiteral("the word processor cannot take the pages %1 of %2")
                  .arg(rangeText(source), source.path()),
              source.path());
}

void DocMergeRunner::failMerge(const QString &reason, const QString &failedSource)
{
    m_progress.clear();
    if (m_options.json())
        printMergeJson(false, reason, failedSource);
    print(m_err, QStringLiteral("docmerge: merge failed: %1\n").arg(reason));
    finishWhenIdle(Failure);
}

void DocMergeRunner::printMergeJson(bool success, const QString &error, const QString &failedSource)
{
    QJsonArray sources;
    for (const MergeSource &source : m_options.sources()) {
        QJsonObject item;
        item.insert(QStringLiteral("path"), source.path());
        item.insert(QStringLiteral("from"), source.from());
        item.insert(QStringLiteral("to"), source.to() == MergeSource::kLastPage ? QJsonValue() : QJsonValue(source.to()));
        sources.append(item);
    }
    QJsonObject root;
    root.insert(QStringLiteral("command"), QStringLiteral("merge"));
    root.insert(QStringLiteral("success"), success);
    root.insert(QStringLiteral("result"), success ? 0 : -99);
    root.insert(QStringLiteral("output"), success ? QJsonValue(m_task.outputPath) : QJsonValue());
    if (!success)
        root.insert(QStringLiteral("error"), error);
    if (!failedSource.isEmpty())
        root.insert(QStringLiteral("failedSource"), failedSource);
    root.insert(QStringLiteral("sources"), sources);
    print(m_out, QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented)));
}

// A cancelled or failed run may still have saved: what was not there before goes again.
void DocMergeRunner::removeUnwantedOutput()
{
    if (m_outputExisted || m_task.outputPath.isEmpty())
        return;
    if (QFileInfo::exists(m_task.outputPath))
        QFile::remove(m_task.outputPath);
}

// Waits, without blocking the event loop, until the engine's workers have ended: each one quits
// its word processor before it ends.
void DocMergeRunner::finishWhenIdle(int exitCode)
{
    if (m_finishing)
        return;
    m_finishing = true;
    m_exitCode = exitCode;
    if (m_provider)
        connect(m_provider.data(), &VSMInfoProvider::workersEnded, this, &DocMergeRunner::finishIfIdle);
    if (m_merger)
        connect(m_merger.data(), &VSMMerger::workersEnded, this, &DocMergeRunner::finishIfIdle);
    // Queued: a run may fail before the event loop that is to receive finished() has started.
    QMetaObject::invokeMethod(this, &DocMergeRunner::finishIfIdle, Qt::QueuedConnection);
}

void DocMergeRunner::finishIfIdle()
{
    if ((m_provider && m_provider->hasLiveWorkers()) || (m_merger && m_merger->hasLiveWorkers()))
        return;
    if (m_canceled)
        removeUnwantedOutput();
    emit finished(m_exitCode);
}
