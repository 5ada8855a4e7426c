#include <QTemporaryDir>
#include <QtTest>

#include <functional>

#include "engine/innerzylprocessor.h"
#include "fakezylserver.h"

using ClientOp = std::function<HRESULT(InnerZylProcessor *, IDispatch *, const QString &)>;
Q_DECLARE_METATYPE(ClientOp)

class tst_InnerZylProcessor : public QObject {
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

private:
    QString makeDocument(const QString &name, const QStringList &pages);

    QTemporaryDir m_dir;
    InnerZylProcessor *m_client = nullptr;
    InnerZylProcessor::Dispatch m_document;
};

void tst_InnerZylProcessor::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(SUCCEEDED(CoInitialize(nullptr)));
}

void tst_InnerZylProcessor::cleanupTestCase()
{
    CoUninitialize();
}

void tst_InnerZylProcessor::init()
{
    FakeZylServer::reset();
    m_client = new InnerZylProcessor;
    QCOMPARE(m_client->createApplication(), S_OK);
    const QString path = makeDocument(QStringLiteral("three.docx"),
                                      {QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")});
    QCOMPARE(m_client->openDocument(path, &m_document), S_OK);
    QVERIFY(m_document);
    FakeZylServer::reset();
}

void tst_InnerZylProcessor::cleanup()
{
    if (m_document)
        m_client->closeDocument(m_document.get());
    m_document.reset();
    m_client->quitApplication();
    delete m_client;
    m_client = nullptr;
    // Every reference the client took has been given back.
    QCOMPARE(FakeZylServer::liveObjects(), 0);
    QCOMPARE(FakeZylServer::openDocuments(), 0);
}

QString tst_InnerZylProcessor::makeDocument(const QString &name, const QStringList &pages)
{
    const QString path = m_dir.filePath(name);
    QFile::remove(path);
    if (!FakeZylServer::writeDocument(path, pages))
        return QString();
    return path;
}

void tst_InnerZylProcessor::openDocumentTakesBackslashes()
{
    const QString path = makeDocument(QStringLiteral("a.doc"), {QStringLiteral("x")});
    InnerZylProcessor::Dispatch document;
    QCOMPARE(m_client->openDocument(QString(path).replace(QLatin1Char('/'), QLatin1Char('\\')), &document), S_OK);
    QVERIFY(document);
    QCOMPARE(FakeZylServer::journal(),
             QStringList({"get Application.Documents()", QStringLiteral("call Documents.Open(bstr:%1)").arg(path)}));
    QCOMPARE(m_client->closeDocument(document.get()), S_OK);
}

void tst_InnerZylProcessor::failedPreconditionSendsNothing_data()
{
    using Op = ClientOp;
    QTest::addColumn<Op>("operation");
    QTest::addColumn<QStringList>("sent");

    const QStringList nothing;
    const QStringList countOnly{QStringLiteral("call Document.ComputeStatistics(i4:2)")};
    InnerZylProcessor::Dispatch none;

    QTest::newRow("open_missing_file") << Op([](InnerZylProcessor *c, IDispatch *, const QString &dir) {
        InnerZylProcessor::Dispatch d;
        return c->openDocument(dir + QStringLiteral("/missing.docx"), &d);
    }) << nothing;
    QTest::newRow("save_as_onto_existing_file") << Op([](InnerZylProcessor *c, IDispatch *d, const QString &dir) {
        return c->saveDocumentAs(d, dir + QStringLiteral("/three.docx"));
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

void tst_InnerZylProcessor::failedPreconditionSendsNothing()
{
    using Op = ClientOp;
    QFETCH(Op, operation);
    QFETCH(QStringList, sent);

    QCOMPARE(operation(m_client, m_document.get(), m_dir.path()), E_FAIL);
    QCOMPARE(FakeZylServer::journal(), sent);
    QCOMPARE(FakeZylServer::applicationsCreated(), 0);
    QVERIFY(m_client->hasApplication());
    QCOMPARE(FakeZylServer::readDocument(m_dir.filePath("three.docx")), (QStringList{"one", "two", "three"}));
}

// Every merge of the merger's tests deletes a last character; only an empty document has none.
void tst_InnerZylProcessor::deleteLastCharacterLeavesEmptyDocument()
{
    InnerZylProcessor::Dispatch document;
    QCOMPARE(m_client->openDocument(makeDocument(QStringLiteral("empty.docx"), {QString()}), &document), S_OK);
    QCOMPARE(m_client->deleteLastCharacter(document.get()), S_OK);
    QVERIFY(FakeZylServer::journal(QStringLiteral("Range.Delete")).isEmpty());
    QCOMPARE(m_client->closeDocument(document.get()), S_OK);
}

void tst_InnerZylProcessor::badAnswerStopsTheCut_data()
{
    QTest::addColumn<QString>("member");
    QTest::addColumn<int>("code"); // 0: answers text where a number is due
    QTest::addColumn<QString>("notSent");
    QTest::newRow("go_to_fails") << "GoTo" << int(DISP_E_EXCEPTION) << "Range.Delete";
    QTest::newRow("statistics_fail") << "ComputeStatistics" << int(RPC_E_DISCONNECTED) << "Document.GoTo";
    QTest::newRow("range_fails") << "Range" << int(E_OUTOFMEMORY) << "Range.Delete";
    QTest::newRow("page_count_as_text") << "ComputeStatistics" << 0 << "Range.Delete";
    QTest::newRow("range_start_as_text") << "Start" << 0 << "Range.Delete";
    QTest::newRow("range_end_as_text") << "End" << 0 << "Range.Delete";
    QTest::newRow("protection_as_text") << "ProtectionType" << 0 << "";
}

// An error passes through unchanged; a number is taken from an answer only when it is one.
void tst_InnerZylProcessor::badAnswerStopsTheCut()
{
    QFETCH(QString, member);
    QFETCH(int, code);
    QFETCH(QString, notSent);
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

QTEST_GUILESS_MAIN(tst_InnerZylProcessor)
#include "tst_innerzylprocessor.moc"
