#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

#include "engine/innerinfoprovider.h"
#include "engine/innerzylprocessor.h"
#include "engine/vsmzylinfoprovider.h"
#include "engine/vsmzylmerger.h"
#include "fakezylserver.h"
#include "shell/vmworkfolders.h"

using ClientOp = std::function<HRESULT(InnerZylProcessor *, IDispatch *, const QString &)>;
Q_DECLARE_METATYPE(ClientOp)

// Both signals of the provider in the order the page receives them; paths relative to dir.
class ProviderLog : public QObject {
public:
    ProviderLog(VSMInfoProvider *provider, const QString &dir)
    {
        const QString prefix = dir + QLatin1Char('/');
        connect(provider, &VSMInfoProvider::infoPageCount, this,
                [this, prefix](const QString &path, bool success, int count) {
                    m_entries << QStringLiteral("%1 %2 %3")
                                     .arg(QString(path).remove(prefix),
                                          success ? QStringLiteral("ok") : QStringLiteral("fail"))
                                     .arg(count);
                });
        connect(provider, &VSMInfoProvider::infoTaskFinished, this,
                [this, prefix](const QStringList &files, bool success) {
                    m_entries << QStringLiteral("finished %1 [%2]")
                                     .arg(success ? QStringLiteral("true") : QStringLiteral("false"),
                                          QStringList(files).replaceInStrings(prefix, QString()).join(QLatin1Char(',')));
                });
    }
    QStringList entries() const { return m_entries; }

private:
    QStringList m_entries;
};

// Every signal of the merger in the order the page receives them.
class MergerLog : public QObject {
public:
    explicit MergerLog(VSMMerger *merger)
    {
        connect(merger, &VSMMerger::taskInitFinished, this, [this] { m_entries << QStringLiteral("init"); });
        connect(merger, &VSMMerger::subProgress, this, [this](int index, int percent) {
            m_entries << QStringLiteral("sub %1 %2").arg(index).arg(percent);
        });
        connect(merger, &VSMMerger::overallProgress, this,
                [this](int percent) { m_entries << QStringLiteral("overall %1").arg(percent); });
        connect(merger, &VSMMerger::mergeFinished, this, [this, merger](int result) {
            m_entries << QStringLiteral("finished %1").arg(result);
            m_runningAtFinish = merger->isRunning();
        });
    }
    QStringList entries() const { return m_entries; }
    bool runningAtFinish() const { return m_runningAtFinish; }

private:
    QStringList m_entries;
    bool m_runningAtFinish = true;
};

// "A1 A2" as {"A1", "A2"}.
static QStringList words(const QString &text)
{
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// The engine against the automation-server double: the client's calls on this thread, then
// page counts and merges, each on a pool thread.
class tst_ZylEngine : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void openDocumentTakesBackslashes();
    void failedPreconditionSendsNothing_data();
    void failedPreconditionSendsNothing();
    void deleteLastCharacterLeavesEmptyDocument();
    void badAnswerStopsTheCut_data();
    void badAnswerStopsTheCut();

    void countsInListOrder_data();
    void countsInListOrder();
    void cancelSettlesTheRest_data();
    void cancelSettlesTheRest();
    void secondStartKeepsTheFirstRunning();

    void mergesChosenPages_data();
    void mergesChosenPages();
    void failsWithoutOutput_data();
    void failsWithoutOutput();
    void pageBreakFallsBackToParagraph();
    void cancelledMergeNeverFinishes_data();
    void cancelledMergeNeverFinishes();

private:
    bool openClient();
    // Items written "a.docx 1 2, b.doc 1 1": source, first and last page.
    MergeTask task(const QString &itemTexts, const QString &outputName) const;
    QByteArray checksums() const;
    void runAndWait(VSMMerger &merger, const MergeTask &task);

    QTemporaryDir m_dir;
    std::unique_ptr<InnerZylProcessor> m_client;
    InnerZylProcessor::Dispatch m_document;
};

void tst_ZylEngine::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(!qEnvironmentVariableIsEmpty("VCOMRT_REGISTRY"));
    QVERIFY(SUCCEEDED(CoInitialize(nullptr)));
}

void tst_ZylEngine::cleanupTestCase()
{
    CoUninitialize();
}

// Sources "A1\fA2\fA3\fA4", "B1\fB2\fB3", "C1\f…\fC5" and "D1\fD2".
void tst_ZylEngine::init()
{
    FakeZylServer::reset();
    const struct {
        const char *name;
        const char *prefix;
        int pages;
    } sources[] = {{"a.docx", "A", 4}, {"b.doc", "B", 3}, {"c.zyl", "C", 5}, {"d.docx", "D", 2}};
    for (const auto &source : sources) {
        QStringList pages;
        for (int i = 1; i <= source.pages; ++i)
            pages << QStringLiteral("%1%2").arg(QLatin1String(source.prefix)).arg(i);
        const QString path = m_dir.filePath(QLatin1String(source.name));
        QFile::remove(path);
        QVERIFY(FakeZylServer::writeDocument(path, pages));
        // Sources may well be read-only; the merge works on copies.
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadUser));
    }
}

void tst_ZylEngine::cleanup()
{
    FakeZylServer::release();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    if (m_client) {
        if (m_document)
            m_client->closeDocument(m_document.get());
        m_document.reset();
        m_client->quitApplication();
        m_client.reset();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // Every reference taken has been given back.
    QCOMPARE(FakeZylServer::liveObjects(), 0);
    QCOMPARE(FakeZylServer::openDocuments(), 0);
    const QStringList outputs = QDir(m_dir.path()).entryList({QStringLiteral("out*")}, QDir::Files);
    for (const QString &name : outputs)
        QFile::remove(m_dir.filePath(name));
}

// A client on this thread with b.doc open; the journal starts after the open.
bool tst_ZylEngine::openClient()
{
    m_client.reset(new InnerZylProcessor);
    const bool open = m_client->createApplication() == S_OK
        && m_client->openDocument(m_dir.filePath(QStringLiteral("b.doc")), &m_document) == S_OK && m_document;
    FakeZylServer::reset();
    return open;
}

void tst_ZylEngine::openDocumentTakesBackslashes()
{
    QVERIFY(openClient());
    const QString path = m_dir.filePath(QStringLiteral("a.docx"));
    InnerZylProcessor::Dispatch document;
    QCOMPARE(m_client->openDocument(QString(path).replace(QLatin1Char('/'), QLatin1Char('\\')), &document), S_OK);
    QVERIFY(document);
    QCOMPARE(FakeZylServer::journal(),
             QStringList({"get Application.Documents()", QStringLiteral("call Documents.Open(bstr:%1)").arg(path)}));
    QCOMPARE(m_client->closeDocument(document.get()), S_OK);
}

void tst_ZylEngine::failedPreconditionSendsNothing_data()
{
    using Op = ClientOp;
    QTest::addColumn<Op>("operation");
    QTest::addColumn<QStringList>("sent");

    const QStringList nothing;
    const QStringList countOnly{QStringLiteral("call Document.ComputeStatistics(i4:2)")};

    QTest::newRow("open_missing_file") << Op([](InnerZylProcessor *c, IDispatch *, const QString &dir) {
        InnerZylProcessor::Dispatch d;
        return c->openDocument(dir + QStringLiteral("/missing.docx"), &d);
    }) << nothing;
    QTest::newRow("save_as_onto_existing_file") << Op([](InnerZylProcessor *c, IDispatch *d, const QString &dir) {
        return c->saveDocumentAs(d, dir + QStringLiteral("/a.docx"));
    }) << nothing;
    QTest::newRow("insert_missing_file") << Op([](InnerZylProcessor *c, IDispatch *d, const QString &dir) {
        return c->insertFileAtEnd(d, dir + QStringLiteral("/missing.docx"));
    }) << nothing;
    QTest::newRow("range_negative_start") << Op([](InnerZylProcessor *c, IDispatch *d, const QString &) {
        InnerZylProcessor::Dispatch r;
        return c->rangeOf(d, -1, 3, &r);
    }) << nothing;
    QTest::newRow("page_start_of_page_0") << Op([](InnerZylProcessor *c, IDispatch *d, const QString &) {
        int p = 0;
        return c->pageStart(d, 0, &p);
    }) << nothing;
    QTest::newRow("page_start_past_the_count") << Op([](InnerZylProcessor *c, IDispatch *d, const QString &) {
        int p = 0;
        return c->pageStart(d, 4, &p);
    }) << countOnly;
    QTest::newRow("delete_pages_3_to_2") << Op([](InnerZylProcessor *c, IDispatch *d, const QString &) {
        return c->deletePages(d, 3, 2);
    }) << nothing;
    QTest::newRow("statistics_of_no_document") << Op([](InnerZylProcessor *c, IDispatch *, const QString &) {
        int p = 0;
        return c->computeStatistics(nullptr, &p);
    }) << nothing;
    QTest::newRow("close_no_document") << Op([](InnerZylProcessor *c, IDispatch *, const QString &) {
        return c->closeDocument(nullptr);
    }) << nothing;
    QTest::newRow("documents_without_application") << Op([](InnerZylProcessor *, IDispatch *, const QString &) {
        InnerZylProcessor fresh;
        InnerZylProcessor::Dispatch d;
        return fresh.documents(&d);
    }) << nothing;
    QTest::newRow("create_application_twice") << Op([](InnerZylProcessor *c, IDispatch *, const QString &) {
        return c->createApplication();
    }) << nothing;
}

void tst_ZylEngine::failedPreconditionSendsNothing()
{
    using Op = ClientOp;
    QFETCH(Op, operation);
    QFETCH(QStringList, sent);
    QVERIFY(openClient());

    QCOMPARE(operation(m_client.get(), m_document.get(), m_dir.path()), E_FAIL);
    QCOMPARE(FakeZylServer::journal(), sent);
    QCOMPARE(FakeZylServer::applicationsCreated(), 0);
    QVERIFY(m_client->hasApplication());
    QCOMPARE(FakeZylServer::readDocument(m_dir.filePath("b.doc")), (QStringList{"B1", "B2", "B3"}));
}

// Every merge deletes a last character; only an empty document has none.
void tst_ZylEngine::deleteLastCharacterLeavesEmptyDocument()
{
    QVERIFY(openClient());
    const QString empty = m_dir.filePath(QStringLiteral("empty.docx"));
    QVERIFY(FakeZylServer::writeDocument(empty, {QString()}));
    InnerZylProcessor::Dispatch document;
    QCOMPARE(m_client->openDocument(empty, &document), S_OK);
    QCOMPARE(m_client->deleteLastCharacter(document.get()), S_OK);
    QVERIFY(FakeZylServer::journal(QStringLiteral("Range.Delete")).isEmpty());
    QCOMPARE(m_client->closeDocument(document.get()), S_OK);
}

void tst_ZylEngine::badAnswerStopsTheCut_data()
{
    QTest::addColumn<QString>("member");
    QTest::addColumn<int>("code"); // 0: answers text where a number is due
    QTest::addColumn<QString>("notSent");
    QTest::newRow("go_to_fails") << "GoTo" << int(DISP_E_EXCEPTION) << "Range.Delete";
    QTest::newRow("statistics_fail") << "ComputeStatistics" << int(RPC_E_DISCONNECTED) << "Document.GoTo";
    QTest::newRow("range_fails") << "Range" << int(E_OUTOFMEMORY) << "Range.Delete";
    QTest::newRow("range_start_as_text") << "Start" << 0 << "Range.Delete";
    QTest::newRow("range_end_as_text") << "End" << 0 << "Range.Delete";
    QTest::newRow("protection_as_text") << "ProtectionType" << 0 << "";
}

// An error passes through unchanged; a number is taken from an answer only when it is one.
void tst_ZylEngine::badAnswerStopsTheCut()
{
    QFETCH(QString, member);
    QFETCH(int, code);
    QFETCH(QString, notSent);
    QVERIFY(openClient());
    if (code)
        FakeZylServer::failCall(member, 0, HRESULT(code));
    else
        FakeZylServer::answerWithText(member);
    const HRESULT expected = code ? HRESULT(code) : DISP_E_TYPEMISMATCH;
    if (notSent.isEmpty()) {
        int type = 7;
        QCOMPARE(m_client->protectionType(m_document.get(), &type), expected);
        QCOMPARE(type, 7);
        return;
    }
    QCOMPARE(m_client->deletePages(m_document.get(), 1, 2), expected);
    QVERIFY(FakeZylServer::journal(notSent).isEmpty());
}

void tst_ZylEngine::countsInListOrder_data()
{
    QTest::addColumn<QString>("failingMember");
    QTest::addColumn<int>("occurrence");
    QTest::addColumn<QStringList>("names"); // gone.doc is missing
    QTest::addColumn<QStringList>("expected");

    const QStringList abc{"a.docx", "b.doc", "c.zyl"};
    const QStringList secondFails{"a.docx ok 4", "b.doc fail 0", "c.zyl ok 5", "finished true [a.docx,b.doc,c.zyl]"};
    QTest::newRow("all_counted") << QString() << 0 << abc
                                 << QStringList{"a.docx ok 4", "b.doc ok 3", "c.zyl ok 5",
                                                "finished true [a.docx,b.doc,c.zyl]"};
    QTest::newRow("duplicate_paths_each_counted") << QString() << 0 << QStringList{"a.docx", "b.doc", "a.docx"}
                                                  << QStringList{"a.docx ok 4", "b.doc ok 3", "a.docx ok 4",
                                                                 "finished true [a.docx,b.doc,a.docx]"};
    QTest::newRow("second_missing") << QString() << 0 << QStringList{"a.docx", "gone.doc", "c.zyl"}
                                    << QStringList{"a.docx ok 4", "gone.doc fail 0", "c.zyl ok 5",
                                                   "finished true [a.docx,gone.doc,c.zyl]"};
    QTest::newRow("second_fails_to_open") << QStringLiteral("Open") << 2 << abc << secondFails;
    QTest::newRow("second_fails_to_count") << QStringLiteral("ComputeStatistics") << 2 << abc << secondFails;
    QTest::newRow("second_fails_to_close") << QStringLiteral("Close") << 2 << abc << secondFails;
    QTest::newRow("second_protection_unknown") << QStringLiteral("ProtectionType") << 2 << abc << secondFails;
    // A protected document is closed unsaved and not counted.
    QTest::newRow("second_protected") << QStringLiteral("protected") << 0 << abc << secondFails;
    QTest::newRow("server_cannot_be_created") << QStringLiteral("CreateInstance") << 0 << QStringList{"a.docx", "b.doc"}
                                              << QStringList{"finished false [a.docx,b.doc]"};
    QTest::newRow("empty_list_does_nothing") << QString() << 0 << QStringList() << QStringList();
}

void tst_ZylEngine::countsInListOrder()
{
    QFETCH(QString, failingMember);
    QFETCH(int, occurrence);
    QFETCH(QStringList, names);
    QFETCH(QStringList, expected);

    QStringList files;
    for (const QString &name : names)
        files << m_dir.filePath(name);
    if (failingMember == QLatin1String("protected"))
        FakeZylServer::setProtection(QStringLiteral("b.doc"), 2);
    else if (!failingMember.isEmpty())
        FakeZylServer::failCall(failingMember, occurrence, DISP_E_EXCEPTION);

    VSMZylInfoProvider provider;
    // Paths come back exactly as they were given.
    ProviderLog log(&provider, m_dir.path());
    provider.start(files);
    QTRY_COMPARE(log.entries(), expected);
    QTRY_VERIFY(!provider.worker());
    // Nothing reaches the page after the end.
    QCoreApplication::processEvents();
    QCOMPARE(log.entries(), expected);

    // One application for a list, quit at the end; every opened file closed unsaved.
    const bool served = !names.isEmpty() && failingMember != QLatin1String("CreateInstance");
    QCOMPARE(FakeZylServer::applicationsCreated(), served ? 1 : 0);
    QCOMPARE(FakeZylServer::journal().value(FakeZylServer::journal().size() - 1),
             served ? QStringLiteral("call Application.Quit()") : QString());
    // A missing file is never sent to the server.
    const int opensSent = !served ? 0 : names.contains(QStringLiteral("gone.doc")) ? 2 : 3;
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Documents.Open")).size(), opensSent);
    const int opened = opensSent - (failingMember == QLatin1String("Open") ? 1 : 0);
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Document.Close")).size(), opened);
    QVERIFY(FakeZylServer::journal(QStringLiteral("Document.Save")).isEmpty());
    QVERIFY(FakeZylServer::journal(QStringLiteral("Document.SaveAs2")).isEmpty());
}

void tst_ZylEngine::cancelSettlesTheRest_data()
{
    QTest::addColumn<QString>("blockedMember");
    QTest::addColumn<int>("occurrence");
    QTest::addColumn<QStringList>("counted"); // before the cancel
    QTest::addColumn<QStringList>("settled"); // by each cancel, in any order
    QTest::addColumn<int>("opens");
    QTest::newRow("before_the_server_starts") << "CreateInstance" << 1 << QStringList()
                                              << QStringList{"a.docx fail 0", "b.doc fail 0", "c.zyl fail 0"} << 0;
    // The file being counted when the cancel came is dropped, the next one never opened.
    QTest::newRow("while_the_second_file_opens") << "Open" << 2 << QStringList{"a.docx ok 4"}
                                                 << QStringList{"b.doc fail 0", "c.zyl fail 0"} << 2;
}

void tst_ZylEngine::cancelSettlesTheRest()
{
    QFETCH(QString, blockedMember);
    QFETCH(int, occurrence);
    QFETCH(QStringList, counted);
    QFETCH(QStringList, settled);
    QFETCH(int, opens);
    // b.doc is listed twice: a cancel settles it once.
    QStringList files;
    for (const char *name : {"a.docx", "b.doc", "c.zyl", "b.doc"})
        files << m_dir.filePath(QLatin1String(name));
    FakeZylServer::blockAt(blockedMember, occurrence);

    VSMZylInfoProvider provider;
    ProviderLog log(&provider, m_dir.path());
    QSignalSpy canceled(&provider, &VSMInfoProvider::canceled);
    provider.start(files);
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    QTRY_COMPARE(log.entries(), counted);
    for (int round = 1; round <= 2; ++round) {
        provider.cancel();
        QCOMPARE(canceled.count(), round);
        QStringList entries = log.entries().mid(counted.size() + (settled.size() + 1) * (round - 1));
        QCOMPARE(entries.size(), settled.size() + 1);
        QCOMPARE(entries.takeLast(), QStringLiteral("finished true [a.docx,b.doc,c.zyl,b.doc]"));
        entries.sort(); // the reported map decides the order
        QCOMPARE(entries, settled);
    }

    // The worker still quits the server, but nothing more reaches the page.
    const int logged = log.entries().size();
    FakeZylServer::release();
    QTRY_VERIFY(!provider.worker());
    QCoreApplication::processEvents();
    QCOMPARE(log.entries().size(), logged);
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Documents.Open")).size(), opens);
    QCOMPARE(FakeZylServer::journal().last(), QStringLiteral("call Application.Quit()"));
}

void tst_ZylEngine::secondStartKeepsTheFirstRunning()
{
    FakeZylServer::blockAt(QStringLiteral("CreateInstance"), 1);
    VSMZylInfoProvider provider;
    ProviderLog log(&provider, m_dir.path());
    provider.start({m_dir.filePath(QStringLiteral("a.docx"))});
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    provider.start({m_dir.filePath(QStringLiteral("b.doc"))});
    QTRY_COMPARE(log.entries(), (QStringList{"b.doc ok 3", "finished true [b.doc]"}));
    FakeZylServer::release();
    QTRY_COMPARE(log.entries().mid(2), (QStringList{"a.docx ok 4", "finished true [a.docx]"}));
    QCOMPARE(FakeZylServer::applicationsCreated(), 2);
}

// Built as the merge page builds it.
MergeTask tst_ZylEngine::task(const QString &itemTexts, const QString &outputName) const
{
    MergeTask t;
    for (const QString &itemText : itemTexts.split(QStringLiteral(", "), Qt::SkipEmptyParts)) {
        const QStringList parts = itemText.split(QLatin1Char(' '));
        t.items << MergeItem{parts.at(1).toInt(), parts.at(2).toInt(), m_dir.filePath(parts.at(0))};
    }
    t.outputPath = m_dir.filePath(outputName);
    if (!t.items.isEmpty()) {
        const QFileInfo first(t.items.first().filePath);
        t.workPath = VMWorkFolders::filePath(first.completeBaseName(), first.suffix(), 2, QDateTime::currentDateTime());
    }
    t.convertFormat = QFileInfo(t.workPath).suffix() != QFileInfo(t.outputPath).suffix();
    return t;
}

QByteArray tst_ZylEngine::checksums() const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const char *name : {"a.docx", "b.doc", "c.zyl", "d.docx"}) {
        QFile file(m_dir.filePath(QLatin1String(name)));
        if (file.open(QIODevice::ReadOnly))
            hash.addData(file.readAll());
    }
    return hash.result();
}

void tst_ZylEngine::runAndWait(VSMMerger &merger, const MergeTask &t)
{
    QSignalSpy finished(&merger, &VSMMerger::mergeFinished);
    merger.start(t);
    QVERIFY(merger.isRunning());
    QTRY_COMPARE(finished.count(), 1);
}

void tst_ZylEngine::mergesChosenPages_data()
{
    QTest::addColumn<QString>("itemTexts");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("pages");
    QTest::addColumn<QString>("format"); // SaveAs2's second argument
    QTest::addColumn<int>("cutCopies"); // the copies saved after a cut

    QTest::newRow("three_sources_middle_whole_and_past_the_end")
        << "a.docx 2 3, b.doc 1 3, c.zyl 4 9" << "out.docx" << "A2 A3 B1 B2 B3 C4 C5" << "empty" << 2;
    QTest::newRow("same_source_twice") << "d.docx 1 2, d.docx 2 2, d.docx 1 1" << "out.docx" << "D1 D2 D2 D1"
                                       << "empty" << 2;
    QTest::newRow("whole_documents_are_not_cut") << "d.docx 1 2, b.doc 1 3" << "out.docx" << "D1 D2 B1 B2 B3"
                                                 << "empty" << 0;
    QTest::newRow("doc_to_docx_is_format_12") << "b.doc 1 1, d.docx 1 1" << "out.docx" << "B1 D1" << "i4:12" << 2;
    QTest::newRow("zyl_to_upper_DOCX_is_format_0") << "c.zyl 1 1, d.docx 1 1" << "out.DOCX" << "C1 D1" << "i4:0"
                                                   << 2;
}

void tst_ZylEngine::mergesChosenPages()
{
    QFETCH(QString, itemTexts);
    QFETCH(QString, output);
    QFETCH(QString, pages);
    QFETCH(QString, format);
    QFETCH(int, cutCopies);
    const QByteArray before = checksums();

    VSMZylMerger merger;
    MergerLog log(&merger);
    const MergeTask t = task(itemTexts, output);
    runAndWait(merger, t);

    QStringList expectedLog{QStringLiteral("init")};
    for (int i = 1; i <= t.items.size(); ++i)
        expectedLog << QStringLiteral("sub %1 100").arg(i);
    expectedLog << QStringLiteral("finished 0");
    QCOMPARE(log.entries(), expectedLog);
    QVERIFY(!log.runningAtFinish());

    QCOMPARE(FakeZylServer::readDocument(t.outputPath), words(pages));
    QCOMPARE(checksums(), before);
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Document.SaveAs2")),
             QStringList{QStringLiteral("call Document.SaveAs2(bstr:%1, %2, empty, bstr:, i4:0)").arg(t.outputPath, format)});
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Document.Save")).size(), cutCopies);
    // Sources themselves are never opened, only their copies.
    for (const QString &open : FakeZylServer::journal(QStringLiteral("Documents.Open")))
        QVERIFY2(!open.contains(m_dir.path() + QLatin1Char('/')), qPrintable(open));
    QCOMPARE(FakeZylServer::applicationsCreated(), 1);
    QCOMPARE(FakeZylServer::journal().last(), QStringLiteral("call Application.Quit()"));
}

void tst_ZylEngine::failsWithoutOutput_data()
{
    QTest::addColumn<QString>("itemTexts");
    QTest::addColumn<QString>("failingMember"); // also "CreateInstance", or "output exists"
    QTest::addColumn<bool>("opensAnything");

    const QString good = QStringLiteral("a.docx 1 2, b.doc 1 1");
    QTest::newRow("one_item") << "a.docx 1 2" << QString() << false;
    QTest::newRow("to_below_from") << "a.docx 3 2, b.doc 1 1" << QString() << false;
    QTest::newRow("first_from_past_the_end") << "a.docx 5 6, b.doc 1 1" << QString() << true;
    QTest::newRow("from_0") << "a.docx 1 2, b.doc 0 1" << QString() << true;
    QTest::newRow("missing_first_source") << "gone.docx 1 2, b.doc 1 1" << QString() << false;
    QTest::newRow("missing_second_source") << "a.docx 1 2, gone.doc 1 1" << QString() << true;
    QTest::newRow("insert_file_fails") << good << "InsertFile" << true;
    QTest::newRow("break_fails") << good << "InsertBreak" << true;
    QTest::newRow("save_fails") << good << "SaveAs2" << true;
    QTest::newRow("cut_fails") << good << "Delete" << true;
    QTest::newRow("open_fails") << good << "Open" << true;
    QTest::newRow("server_cannot_be_created") << good << "CreateInstance" << false;
    QTest::newRow("existing_output_is_untouched") << good << "output exists" << false;
}

void tst_ZylEngine::failsWithoutOutput()
{
    QFETCH(QString, itemTexts);
    QFETCH(QString, failingMember);
    QFETCH(bool, opensAnything);
    const bool outputExists = failingMember == QLatin1String("output exists");
    const bool noServer = failingMember == QLatin1String("CreateInstance");
    if (outputExists)
        QVERIFY(FakeZylServer::writeDocument(m_dir.filePath(QStringLiteral("out.docx")), {QStringLiteral("precious")}));
    else if (!failingMember.isEmpty())
        FakeZylServer::failCall(failingMember, 0, noServer ? REGDB_E_CLASSNOTREG : DISP_E_EXCEPTION);
    const QByteArray before = checksums();

    VSMZylMerger merger;
    MergerLog log(&merger);
    const MergeTask t = task(itemTexts, "out.docx");
    runAndWait(merger, t);

    // Without a server the merge never starts.
    QCOMPARE(log.entries().first() == QLatin1String("init"), !noServer);
    QCOMPARE(log.entries().last(), QStringLiteral("finished -99"));
    QCOMPARE(FakeZylServer::readDocument(t.outputPath), outputExists ? QStringList{"precious"} : QStringList());
    QCOMPARE(checksums(), before);
    QCOMPARE(!FakeZylServer::journal(QStringLiteral("Documents.Open")).isEmpty(), opensAnything);
    // Whatever was opened was closed before the server was quit.
    QCOMPARE(FakeZylServer::journal().value(FakeZylServer::journal().size() - 1),
             noServer ? QString() : QStringLiteral("call Application.Quit()"));
    const int opens = FakeZylServer::journal(QStringLiteral("Documents.Open")).size();
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Document.Close")).size(),
             failingMember == QLatin1String("Open") ? 0 : opens);
}

// A break that starts two pages is undone: a plain paragraph separates the sources.
void tst_ZylEngine::pageBreakFallsBackToParagraph()
{
    FakeZylServer::setBreakAddsTwoPages(true);
    VSMZylMerger merger;
    const MergeTask t = task("a.docx 1 2, d.docx 2 2", "out.docx");
    runAndWait(merger, t);
    QCOMPARE(FakeZylServer::readDocument(t.outputPath), (QStringList{"A1", "A2\nD2"}));
}

void tst_ZylEngine::cancelledMergeNeverFinishes_data()
{
    QTest::addColumn<int>("heldOpen"); // opens: first copy, target, second copy, third copy
    QTest::addColumn<QString>("itemTexts");
    QTest::addColumn<QStringList>("logged");
    QTest::addColumn<QStringList>("pages");
    QTest::newRow("before_the_second_of_three") << 2 << "a.docx 1 2, b.doc 1 1, c.zyl 1 1"
                                                << QStringList{"init", "sub 1 100"} << QStringList();
    // The merger no longer looks at the cancel here and saves.
    QTest::newRow("during_the_last_append") << 4 << "a.docx 1 2, b.doc 1 1, c.zyl 2 2"
                                            << QStringList{"init", "sub 1 100", "sub 2 100", "sub 3 100"}
                                            << words("A1 A2 B1 C2");
}

void tst_ZylEngine::cancelledMergeNeverFinishes()
{
    QFETCH(int, heldOpen);
    QFETCH(QString, itemTexts);
    QFETCH(QStringList, logged);
    QFETCH(QStringList, pages);
    FakeZylServer::blockAt(QStringLiteral("Open"), heldOpen);
    VSMZylMerger merger;
    MergerLog log(&merger);
    QSignalSpy canceled(&merger, &VSMMerger::canceled);
    QSignalSpy ended(&merger, &VSMMerger::workersEnded);
    const MergeTask t = task(itemTexts, "out.docx");
    merger.start(t);
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    merger.cancel();
    QCOMPARE(canceled.count(), 1);
    QVERIFY(merger.hasLiveWorkers());
    FakeZylServer::release();
    // The cancelled worker says itself that it has ended, after quitting the server.
    QTRY_COMPARE(ended.count(), 1);
    QVERIFY(!merger.hasLiveWorkers());
    QCOMPARE(FakeZylServer::journal().last(), QStringLiteral("call Application.Quit()"));

    // Nothing more was appended or saved, and no result is reported.
    QCOMPARE(log.entries(), logged);
    QCOMPARE(FakeZylServer::readDocument(t.outputPath), pages);
    QVERIFY(merger.isRunning());
}

QTEST_GUILESS_MAIN(tst_ZylEngine)
#include "tst_zylengine.moc"
