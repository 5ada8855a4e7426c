#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QtTest>

#include "engine/vsmzylmerger.h"
#include "fakezylserver.h"
#include "shell/vmworkfolders.h"

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
static QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

class tst_VSMZylMerger : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void mergesChosenPages_data();
    void mergesChosenPages();
    void failsWithoutOutput_data();
    void failsWithoutOutput();
    void saveFormat_data();
    void saveFormat();
    void pageBreakFallsBackToParagraph();
    void cutsTailBeforeHead();
    void wholeDocumentIsNotCut();
    void cancelBeforeSecondOfThree();
    void cancelDuringLastAppend();

private:
    // Items written "a.docx 1 2, b.doc 1 1": source, first and last page.
    MergeTask task(const QString &itemTexts, const QString &outputName) const;
    QByteArray checksums() const;
    void runAndWait(VSMMerger &merger, const MergeTask &task);
    // Runs a merge of task(itemTexts, outputName) that must succeed.
    void runOk(const QString &itemTexts, const QString &outputName, MergeTask *t);

    QTemporaryDir m_dir;
};

void tst_VSMZylMerger::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(!qEnvironmentVariableIsEmpty("VCOMRT_REGISTRY"));
}

void tst_VSMZylMerger::init()
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

void tst_VSMZylMerger::cleanup()
{
    FakeZylServer::release();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(FakeZylServer::liveObjects(), 0);
    QCOMPARE(FakeZylServer::openDocuments(), 0);
    const QStringList outputs = QDir(m_dir.path()).entryList({QStringLiteral("out*")}, QDir::Files);
    for (const QString &name : outputs)
        QFile::remove(m_dir.filePath(name));
}

// Built as the merge page builds it.
MergeTask tst_VSMZylMerger::task(const QString &itemTexts, const QString &outputName) const
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

QByteArray tst_VSMZylMerger::checksums() const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const char *name : {"a.docx", "b.doc", "c.zyl", "d.docx"}) {
        QFile file(m_dir.filePath(QLatin1String(name)));
        if (file.open(QIODevice::ReadOnly))
            hash.addData(file.readAll());
    }
    return hash.result();
}

void tst_VSMZylMerger::runAndWait(VSMMerger &merger, const MergeTask &t)
{
    QSignalSpy finished(&merger, &VSMMerger::mergeFinished);
    QVERIFY(finished.isValid());
    merger.start(t);
    QVERIFY(merger.isRunning());
    QTRY_COMPARE(finished.count(), 1);
}

void tst_VSMZylMerger::runOk(const QString &itemTexts, const QString &outputName, MergeTask *t)
{
    VSMZylMerger merger;
    MergerLog log(&merger);
    *t = task(itemTexts, outputName);
    runAndWait(merger, *t);
    QCOMPARE(log.entries().last(), QStringLiteral("finished 0"));
}

void tst_VSMZylMerger::mergesChosenPages_data()
{
    QTest::addColumn<QString>("itemTexts");
    QTest::addColumn<QString>("pages");

    QTest::newRow("three_sources_middle_whole_and_past_the_end") << "a.docx 2 3, b.doc 1 3, c.zyl 4 9"
                                                                 << "A2 A3 B1 B2 B3 C4 C5";
    QTest::newRow("same_source_twice") << "d.docx 1 2, d.docx 2 2, d.docx 1 1" << "D1 D2 D2 D1";
}

void tst_VSMZylMerger::mergesChosenPages()
{
    QFETCH(QString, itemTexts);
    QFETCH(QString, pages);
    const QByteArray before = checksums();

    VSMZylMerger merger;
    MergerLog log(&merger);
    const MergeTask t = task(itemTexts, "out.docx");
    runAndWait(merger, t);

    QStringList expectedLog{QStringLiteral("init")};
    for (int i = 1; i <= t.items.size(); ++i)
        expectedLog << QStringLiteral("sub %1 100").arg(i);
    expectedLog << QStringLiteral("finished 0");
    QCOMPARE(log.entries(), expectedLog);
    QVERIFY(!log.runningAtFinish());
    QVERIFY(!merger.isRunning());

    QCOMPARE(FakeZylServer::readDocument(t.outputPath), words(qPrintable(pages)));
    QCOMPARE(checksums(), before);
    // Sources themselves are never opened, only their copies.
    for (const QString &open : FakeZylServer::journal(QStringLiteral("Documents.Open")))
        QVERIFY2(!open.contains(m_dir.path() + QLatin1Char('/')), qPrintable(open));
    QCOMPARE(FakeZylServer::applicationsCreated(), 1);
    QCOMPARE(FakeZylServer::journal().last(), QStringLiteral("call Application.Quit()"));
}

void tst_VSMZylMerger::failsWithoutOutput_data()
{
    QTest::addColumn<QString>("itemTexts");
    QTest::addColumn<QString>("failingMember"); // also "CreateInstance", or "output exists"
    QTest::addColumn<bool>("opensAnything");

    const QString good = QStringLiteral("a.docx 1 2, b.doc 1 1");
    QTest::newRow("one_item") << "a.docx 1 2" << QString() << false;
    QTest::newRow("first_to_below_from") << "a.docx 3 2, b.doc 1 1" << QString() << false;
    QTest::newRow("second_to_below_from") << "a.docx 1 2, b.doc 3 2" << QString() << true;
    QTest::newRow("first_from_past_the_end") << "a.docx 5 6, b.doc 1 1" << QString() << true;
    QTest::newRow("second_from_past_the_end") << "a.docx 1 2, b.doc 4 4" << QString() << true;
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

void tst_VSMZylMerger::failsWithoutOutput()
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
    QVERIFY(!merger.isRunning());
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

void tst_VSMZylMerger::saveFormat_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("formatArgument");
    QTest::newRow("doc_to_docx_is_12") << "b.doc" << "out.docx" << "i4:12";
    QTest::newRow("docx_to_doc_is_0") << "a.docx" << "out.doc" << "i4:0";
    QTest::newRow("zyl_to_upper_DOCX_is_0") << "c.zyl" << "out.DOCX" << "i4:0";
    QTest::newRow("docx_to_docx_keeps_format") << "a.docx" << "out.docx" << "empty";
}

void tst_VSMZylMerger::saveFormat()
{
    QFETCH(QString, first);
    QFETCH(QString, output);
    QFETCH(QString, formatArgument);
    MergeTask t;
    runOk(first + QStringLiteral(" 1 1, d.docx 1 1"), output, &t);
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Document.SaveAs2")),
             QStringList{QStringLiteral("call Document.SaveAs2(bstr:%1, %2, empty, bstr:, i4:0)")
                             .arg(t.outputPath, formatArgument)});
}

void tst_VSMZylMerger::pageBreakFallsBackToParagraph()
{
    FakeZylServer::setBreakAddsTwoPages(true);
    MergeTask t;
    runOk("a.docx 1 2, d.docx 2 2", "out.docx", &t);

    QStringList sent = FakeZylServer::journal();
    const int brk = sent.indexOf(QStringLiteral("call Range.InsertBreak(i4:7)"));
    QVERIFY(brk > 0);
    QCOMPARE(sent.mid(brk + 1, 5), (QStringList{"call Document.ComputeStatistics(i4:2)", "call Document.Undo(i4:1)",
                                                "call Document.Range()", "call Range.Collapse(i4:0)",
                                                "call Range.InsertParagraph()"}));
    QCOMPARE(FakeZylServer::readDocument(t.outputPath), (QStringList{"A1", "A2\nD2"}));
}

void tst_VSMZylMerger::cutsTailBeforeHead()
{
    // c.zyl is "C1\fC2\fC3\fC4\fC5": pages 2 and 3 stay, 4 to 5 go first, then 1.
    MergeTask t;
    runOk("c.zyl 2 3, d.docx 1 1", "out.zyl", &t);

    QStringList cuts;
    for (const QString &entry : FakeZylServer::journal()) {
        if (entry.startsWith(QStringLiteral("call Document.Range(i4:")) || entry == QStringLiteral("call Range.Delete()"))
            cuts << entry;
    }
    QCOMPARE(cuts.mid(0, 4), (QStringList{"call Document.Range(i4:9, i4:14)", "call Range.Delete()",
                                          "call Document.Range(i4:0, i4:3)", "call Range.Delete()"}));
    QCOMPARE(FakeZylServer::readDocument(t.outputPath), words("C2 C3 D1"));
}

void tst_VSMZylMerger::wholeDocumentIsNotCut()
{
    MergeTask t;
    runOk("d.docx 1 2, b.doc 1 3", "out.docx", &t);
    QVERIFY(FakeZylServer::journal(QStringLiteral("Range.Delete")).size() == 1); // only the final paragraph mark
    QVERIFY(FakeZylServer::journal(QStringLiteral("Document.Save")).isEmpty());
    // Each copy: opened, counted, closed.
    const QStringList sent = FakeZylServer::journal();
    QCOMPARE(sent.mid(0, 4), (QStringList{"get Application.Documents()", sent.at(1),
                                          "call Document.ComputeStatistics(i4:2)", "call Document.Close(i4:0)"}));
    QCOMPARE(FakeZylServer::readDocument(t.outputPath), words("D1 D2 B1 B2 B3"));
}

void tst_VSMZylMerger::cancelBeforeSecondOfThree()
{
    // Open 1 is the first source's copy, Open 2 the target: the cancel lands before the second source.
    FakeZylServer::blockAt(QStringLiteral("Open"), 2);
    VSMZylMerger merger;
    MergerLog log(&merger);
    QSignalSpy canceled(&merger, &VSMMerger::canceled);
    QSignalSpy ended(&merger, &VSMMerger::workersEnded);
    QVERIFY(canceled.isValid());
    QVERIFY(ended.isValid());
    const MergeTask t = task("a.docx 1 2, b.doc 1 1, c.zyl 1 1", "out.docx");
    merger.start(t);
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    merger.cancel();
    QCOMPARE(canceled.count(), 1);
    QVERIFY(merger.hasLiveWorkers());
    FakeZylServer::release();
    // The cancelled worker says itself that it has ended, after quitting the server.
    QTRY_COMPARE(ended.count(), 1);
    QVERIFY(!merger.hasLiveWorkers());

    QCOMPARE(log.entries(), (QStringList{"init", "sub 1 100"}));
    QVERIFY(!QFile::exists(t.outputPath));
    QVERIFY(merger.isRunning());
    QVERIFY(FakeZylServer::journal(QStringLiteral("Range.InsertFile")).isEmpty());
    QVERIFY(FakeZylServer::journal(QStringLiteral("Document.SaveAs2")).isEmpty());
    QCOMPARE(FakeZylServer::journal().last(), QStringLiteral("call Application.Quit()"));
}

void tst_VSMZylMerger::cancelDuringLastAppend()
{
    // Opens: first copy, target, second copy, third copy.
    FakeZylServer::blockAt(QStringLiteral("Open"), 4);
    VSMZylMerger merger;
    MergerLog log(&merger);
    const MergeTask t = task("a.docx 1 2, b.doc 1 1, c.zyl 2 2", "out.docx");
    merger.start(t);
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    merger.cancel();
    FakeZylServer::release();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QCoreApplication::processEvents();

    QCOMPARE(log.entries(), (QStringList{"init", "sub 1 100", "sub 2 100", "sub 3 100"}));
    QCOMPARE(FakeZylServer::readDocument(t.outputPath), words("A1 A2 B1 C2"));
    QVERIFY(merger.isRunning());
}

QTEST_GUILESS_MAIN(tst_VSMZylMerger)
#include "tst_vsmzylmerger.moc"
