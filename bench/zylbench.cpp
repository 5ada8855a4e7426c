// Times single operations of the word-processor server on one document, for bench/bench.py.
//
//   zylbench DOCUMENT INSERTED
//
// Opens a copy of DOCUMENT and prints "<operation>\t<seconds>\t<pages after it>" for: counting
// twice in a row, going to the middle page, deleting the first page, and inserting INSERTED at
// the end. The copy is closed without saving.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

#include "engine/innerzylprocessor.h"

namespace {

bool timed(InnerZylProcessor &zyl, const char *what, IDispatch *document, const std::function<HRESULT()> &operation)
{
    QElapsedTimer timer;
    timer.start();
    const HRESULT hr = operation();
    const double seconds = timer.nsecsElapsed() / 1e9;
    if (FAILED(hr)) {
        std::fprintf(stderr, "zylbench: %s failed: 0x%08x\n", what, unsigned(hr));
        return false;
    }
    int pages = 0;
    if (FAILED(zyl.computeStatistics(document, &pages))) {
        std::fprintf(stderr, "zylbench: counting after %s failed\n", what);
        return false;
    }
    std::printf("%s\t%.3f\t%d\n", what, seconds, pages);
    std::fflush(stdout);
    return true;
}

int run(const QString &source, const QString &inserted)
{
    QTemporaryDir dir;
    const QString work = dir.filePath(QStringLiteral("work.") + QFileInfo(source).suffix());
    if (!dir.isValid() || !QFile::copy(source, work)) {
        std::fprintf(stderr, "zylbench: cannot copy %s\n", qPrintable(source));
        return 1;
    }
    InnerZylProcessor zyl;
    HRESULT hr = zyl.createApplication();
    if (FAILED(hr)) {
        std::fprintf(stderr, "zylbench: no word-processor server: 0x%08x\n", unsigned(hr));
        return 1;
    }
    InnerZylProcessor::Dispatch doc;
    bool ok = SUCCEEDED(hr = zyl.openDocument(work, &doc));
    if (!ok)
        std::fprintf(stderr, "zylbench: cannot open %s: 0x%08x\n", qPrintable(source), unsigned(hr));
    int pages = 0;
    IDispatch *d = doc.get();
    ok = ok && timed(zyl, "count", d, [&] { return zyl.computeStatistics(d, &pages); });
    ok = ok && timed(zyl, "count again", d, [&] { return zyl.computeStatistics(d, &pages); });
    ok = ok && timed(zyl, "goto middle page", d, [&] {
        int start = 0;
        return zyl.pageStart(d, pages / 2, &start);
    });
    ok = ok && timed(zyl, "delete first page", d, [&] { return zyl.deletePages(d, 1, 1); });
    ok = ok && timed(zyl, "insert file at end", d, [&] { return zyl.insertFileAtEnd(d, inserted); });
    if (doc)
        zyl.closeDocument(d);
    doc.reset();
    zyl.quitApplication();
    return ok ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList args = application.arguments();
    if (args.size() != 3) {
        std::fprintf(stderr, "usage: zylbench DOCUMENT INSERTED\n");
        return 2;
    }
    if (FAILED(CoInitialize(nullptr))) {
        std::fprintf(stderr, "zylbench: CoInitialize failed\n");
        return 1;
    }
    const int status = run(args[1], args[2]);
    CoUninitialize();
    return status;
}
