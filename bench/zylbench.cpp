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

#include <vcomrt/com.h>
#include <vcomrt/comptr.h>

#include "zylautomation.h"

using A = ZylAutomation;

namespace {

bool timed(const char *what, IDispatch *document, const std::function<HRESULT()> &operation)
{
    QElapsedTimer timer;
    timer.start();
    const HRESULT hr = operation();
    const double seconds = timer.nsecsElapsed() / 1e9;
    if (FAILED(hr)) {
        std::fprintf(stderr, "zylbench: %s failed: 0x%08x\n", what, unsigned(hr));
        return false;
    }
    LONG pages = 0;
    if (FAILED(A::pageCount(document, &pages))) {
        std::fprintf(stderr, "zylbench: counting after %s failed\n", what);
        return false;
    }
    std::printf("%s\t%.3f\t%ld\n", what, seconds, long(pages));
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
    ComPtr<IDispatch> app;
    HRESULT hr = A::createApplication(&app);
    if (FAILED(hr)) {
        std::fprintf(stderr, "zylbench: no word-processor server: 0x%08x\n", unsigned(hr));
        return 1;
    }
    ComPtr<IDispatch> doc;
    bool ok = SUCCEEDED(hr = A::open(app.get(), work, &doc));
    if (!ok)
        std::fprintf(stderr, "zylbench: cannot open %s: 0x%08x\n", qPrintable(source), unsigned(hr));
    LONG pages = 0;
    ok = ok && timed("count", doc.get(), [&] { return A::pageCount(doc.get(), &pages); });
    ok = ok && timed("count again", doc.get(), [&] { return A::pageCount(doc.get(), &pages); });
    ok = ok && timed("goto middle page", doc.get(), [&] {
        LONG start = 0;
        return A::pageStart(doc.get(), pages / 2, &start);
    });
    ok = ok && timed("delete first page", doc.get(), [&] { return A::deletePages(doc.get(), 1, 1); });
    ok = ok && timed("insert file at end", doc.get(), [&] {
        ComPtr<IDispatch> range;
        HRESULT r = A::methodObject(doc.get(), QStringLiteral("Range"), {}, &range);
        if (SUCCEEDED(r))
            r = A::method(range.get(), QStringLiteral("Collapse"), {A::i4(0)});
        return FAILED(r) ? r : A::method(range.get(), QStringLiteral("InsertFile"), {A::text(inserted)});
    });
    if (doc)
        A::method(doc.get(), QStringLiteral("Close"), {A::i4(0)});
    doc.reset();
    A::method(app.get(), QStringLiteral("Quit"));
    app.reset();
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
