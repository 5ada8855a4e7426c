#include "engine/innerzylmerger.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include "engine/enginelog.h"
#include "shell/vmworkfolders.h"

namespace {

const int kFailed = -99;

int pageCount(qint64 from, qint64 to)
{
    return int(std::clamp<qint64>(to - from + 1, INT_MIN, INT_MAX));
}

} // namespace

InnerZylMerger::InnerZylMerger() = default;

InnerZylMerger::~InnerZylMerger() = default;

void InnerZylMerger::run()
{
    int result = kFailed;
    const QString output = toForwardSlashes(outputPath());
    // A file already there is never ours: the merge refuses to start on it.
    const bool outputTaken = QFile::exists(output);
    if (enterRun()) {
        emit initFinished();
        result = merge();
    }

    leaveRun();

    // A failed run leaves nothing half-written at the output path.
    if (result != 0 && !outputTaken)
        QFile::remove(output);
    if (!isCanceled())
        emit finished(result);
    finishRun();
}

int InnerZylMerger::merge()
{
    const QString output = toForwardSlashes(outputPath());
    const QString work = toForwardSlashes(workPath());
    try {
        return mergeInto(output, work);
    } catch (const OutOfMemory &) {
        qCWarning(lcEngine, "out of memory while merging into %s", qPrintable(output));
        return kFailed;
    }
}

int InnerZylMerger::mergeInto(const QString &output, const QString &work)
{
    const QList<MergeItem> sources = items();
    if (!hasApplication() || sources.size() < 2 || QFile::exists(output) || QFile::exists(work))
        return kFailed;

    const MergeItem &first = sources.first();
    if (!QFile::exists(first.filePath) || isCanceled())
        return kFailed;

    HRESULT hr = extractPages(first.filePath, first.from, pageCount(first.from, first.to), work);
    if (FAILED(hr) || !QFile::exists(work))
        return kFailed;
    emit subProgress(1, 100);

    Dispatch target;
    // Closed on every path from here on; on failure without saving and whatever Close answers.
    struct TargetCloser {
        InnerZylMerger *merger;
        Dispatch *target;
        bool armed = true;
        ~TargetCloser()
        {
            if (armed && *target)
                merger->closeDocument(target->get());
        }
    } closer{this, &target};

    if (FAILED(openDocument(work, &target)) || !target)
        return kFailed;

    for (int i = 1; i < sources.size(); ++i) {
        if (isCanceled())
            return kFailed;
        const MergeItem &item = sources.at(i);
        if (FAILED(appendFile(target.get(), item.filePath, item.from, item.to)))
            return kFailed;
        emit subProgress(i + 1, 100);
    }

    hr = convertFormat()
        ? saveDocumentAs(target.get(), output, QFileInfo(output).suffix())
        : saveDocumentAs(target.get(), output);
    if (FAILED(hr))
        return kFailed;

    closer.armed = false;
    hr = closeDocument(target.get());
    return SUCCEEDED(hr) ? 0 : kFailed;
}

HRESULT InnerZylMerger::appendFile(IDispatch *target, const QString &path, int from, int to)
{
    if (from < 1 || to < 1 || !QFile::exists(path) || !hasApplication() || !target)
        return E_FAIL;
    const QString tempPath = VMWorkFolders::copyPath(path, 1);
    if (tempPath.isEmpty())
        return E_FAIL;
    HRESULT hr = extractPages(path, from, pageCount(from, to), tempPath);
    if (FAILED(hr))
        return hr;
    if (!QFile::exists(tempPath))
        return E_FAIL;

    return appendDocument(target, tempPath);
}

HRESULT InnerZylMerger::extractPages(const QString &source, int start, int count,
                                     const QString &destination)
{
    if (start < 1 || count < 1 || !QFile::exists(source) || !hasApplication())
        return E_FAIL;
    if (!QFile::copy(source, destination) || !QFile::exists(destination))
        return E_FAIL;
    // A read-only source gives a read-only copy, which could then not be saved.
    QFile::setPermissions(destination,
                          QFile::permissions(destination) | QFile::ReadOwner | QFile::WriteOwner);

    Dispatch document;
    HRESULT hr = openDocument(destination, &document);
    if (FAILED(hr))
        return hr;

    int pages = 0;
    hr = computeStatistics(document.get(), &pages);
    if (FAILED(hr) || start > pages) {
        closeDocument(document.get());
        return FAILED(hr) ? hr : E_FAIL;
    }
    const int n = std::min(count, pages - start + 1);
    const int last = start + n - 1;
    if (start == 1 && last >= pages)
        return closeDocument(document.get());

    // The tail goes first, so that the head's page numbers still hold.
    if (last < pages)
        hr = deletePages(document.get(), last + 1, pages);
    if (SUCCEEDED(hr) && start > 1)
        hr = deletePages(document.get(), 1, start - 1);
    if (SUCCEEDED(hr))
        hr = saveDocument(document.get());
    if (FAILED(hr)) {
        closeDocument(document.get());
        return hr;
    }
    return closeDocument(document.get());
}
