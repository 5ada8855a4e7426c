#include "engine/innerzylinfoprovider.h"

#include <QFile>

#include "engine/enginelog.h"

InnerZylInfoProvider::InnerZylInfoProvider(const QStringList &fileList)
    : InnerInfoProvider(fileList)
{
}

InnerZylInfoProvider::~InnerZylInfoProvider() = default;

int InnerZylInfoProvider::countPages(const QString &path, int &count)
{
    if (!QFile::exists(path) || !hasApplication())
        return -99;
    try {
        Dispatch document;
        if (FAILED(openDocument(path, &document)))
            return -99;
        int protection = 0;
        if (FAILED(protectionType(document.get(), &protection)) || protection != -1) {
            // The row shows every reason at once; the log tells which one it was.
            qCWarning(lcEngine, "%s is protected (type %d) and is not merged", qPrintable(path), protection);
            closeDocument(document.get());
            return -99;
        }
        int pages = 0;
        if (FAILED(computeStatistics(document.get(), &pages))) {
            closeDocument(document.get());
            return -99;
        }
        count = pages;
        return SUCCEEDED(closeDocument(document.get())) ? 0 : -99;
    } catch (const OutOfMemory &) {
        qCWarning(lcEngine, "out of memory while counting the pages of %s", qPrintable(path));
        return -99;
    }
}

void InnerZylInfoProvider::run()
{
    const bool ready = enterRun();

    if (ready) {
        const QStringList files = fileList();
        for (const QString &path : files) {
            if (isCanceled())
                break;
            int count = 0;
            const int result = countPages(path, count);
            if (isCanceled())
                break;
            if (result >= 0)
                emit infoPageCount(path, true, count);
            else
                emit infoPageCount(path, false, 0);
        }
    }

    leaveRun();

    if (!isCanceled())
        emit taskFinished(fileList(), ready);
    finishRun();
}
