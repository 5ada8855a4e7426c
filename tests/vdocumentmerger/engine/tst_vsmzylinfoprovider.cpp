#include <QTemporaryDir>
#include <QtTest>

#include "engine/innerinfoprovider.h"
#include "engine/vsmzylinfoprovider.h"
#include "fakezylserver.h"

// Both signals of the provider in the order the page receives them.
class ProviderLog : public QObject {
public:
    explicit ProviderLog(VSMInfoProvider *provider)
    {
        connect(provider, &VSMInfoProvider::infoPageCount, this,
                [this](const QString &path, bool success, int count) {
                    m_entries << QStringLiteral("%1 %2 %3")
                                     .arg(QFileInfo(path).fileName())
                                     .arg(success ? QStringLiteral("ok") : QStringLiteral("fail"))
                                     .arg(count);
                });
        connect(provider, &VSMInfoProvider::infoTaskFinished, this,
                [this](const QStringList &files, bool success) {
                    QStringList names;
                    for (const QString &f : files)
                        names << QFileInfo(f).fileName();
                    m_entries << QStringLiteral("finished %1 [%2]")
                                     .arg(success ? QStringLiteral("true") : QStringLiteral("false"))
                                     .arg(names.join(QLatin1Char(',')));
                });
    }
    QStringList entries() const { return m_entries; }

private:
    QStringList m_entries;
};

class tst_VSMZylInfoProvider : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void emptyListDoesNothing();
    void countsInListOrder_data();
    void countsInListOrder();
    void serverCannotBeCreated();
    void cancelRightAfterStartAndAgain();
    void cancelMidwayReportsTheRest();
    void secondStartKeepsTheFirstRunning();

private:
    QString document(const QString &name, int pages);

    QTemporaryDir m_dir;
};

void tst_VSMZylInfoProvider::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(!qEnvironmentVariableIsEmpty("VCOMRT_REGISTRY"));
}

void tst_VSMZylInfoProvider::init()
{
    FakeZylServer::reset();
}

void tst_VSMZylInfoProvider::cleanup()
{
    FakeZylServer::release();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(FakeZylServer::liveObjects(), 0);
    QCOMPARE(FakeZylServer::openDocuments(), 0);
}

QString tst_VSMZylInfoProvider::document(const QString &name, int pages)
{
    QStringList texts;
    for (int i = 1; i <= pages; ++i)
        texts << QStringLiteral("%1 page %2").arg(name).arg(i);
    const QString path = m_dir.filePath(name);
    return FakeZylServer::writeDocument(path, texts) ? path : QString();
}

void tst_VSMZylInfoProvider::emptyListDoesNothing()
{
    VSMZylInfoProvider provider;
    ProviderLog log(&provider);
    provider.start(QStringList());
    QVERIFY(!provider.worker());
    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QCoreApplication::processEvents();
    QVERIFY(log.entries().isEmpty());
    QCOMPARE(FakeZylServer::applicationsCreated(), 0);
}

void tst_VSMZylInfoProvider::countsInListOrder_data()
{
    QTest::addColumn<QString>("failingMember");
    QTest::addColumn<int>("occurrence");
    QTest::addColumn<QStringList>("names"); // gone.doc is missing
    QTest::addColumn<QStringList>("expected");

    const QStringList abc{"a.docx", "b.doc", "c.zyl"};
    const QStringList secondFails{"a.docx ok 2", "b.doc fail 0", "c.zyl ok 4", "finished true [a.docx,b.doc,c.zyl]"};
    QTest::newRow("all_counted") << QString() << 0 << abc
                                 << QStringList{"a.docx ok 2", "b.doc ok 1", "c.zyl ok 4",
                                                "finished true [a.docx,b.doc,c.zyl]"};
    QTest::newRow("duplicate_paths_each_counted") << QString() << 0 << QStringList{"a.docx", "b.doc", "a.docx"}
                                                  << QStringList{"a.docx ok 2", "b.doc ok 1", "a.docx ok 2",
                                                                 "finished true [a.docx,b.doc,a.docx]"};
    QTest::newRow("second_missing") << QString() << 0 << QStringList{"a.docx", "gone.doc", "c.zyl"}
                                    << QStringList{"a.docx ok 2", "gone.doc fail 0", "c.zyl ok 4",
                                                   "finished true [a.docx,gone.doc,c.zyl]"};
    QTest::newRow("second_fails_to_open") << QStringLiteral("Open") << 2 << abc << secondFails;
    QTest::newRow("second_fails_to_count") << QStringLiteral("ComputeStatistics") << 2 << abc << secondFails;
    QTest::newRow("second_fails_to_close") << QStringLiteral("Close") << 2 << abc << secondFails;
    QTest::newRow("second_protection_unknown") << QStringLiteral("ProtectionType") << 2 << abc << secondFails;
    // A protected document is closed unsaved and not counted.
    QTest::newRow("second_protected") << QStringLiteral("protected") << 0 << abc << secondFails;
}

void tst_VSMZylInfoProvider::countsInListOrder()
{
    QFETCH(QString, failingMember);
    QFETCH(int, occurrence);
    QFETCH(QStringList, names);
    QFETCH(QStringList, expected);

    const QHash<QString, int> pages{{"a.docx", 2}, {"b.doc", 1}, {"c.zyl", 4}};
    QStringList files;
    for (const QString &name : names)
        files << (pages.contains(name) ? document(name, pages.value(name)) : m_dir.filePath(name));
    if (failingMember == QLatin1String("protected"))
        FakeZylServer::setProtection(QStringLiteral("b.doc"), 2);
    else if (!failingMember.isEmpty())
        FakeZylServer::failCall(failingMember, occurrence, DISP_E_EXCEPTION);

    VSMZylInfoProvider provider;
    ProviderLog log(&provider);
    QSignalSpy counts(&provider, &VSMInfoProvider::infoPageCount);
    QSignalSpy finished(&provider, &VSMInfoProvider::infoTaskFinished);
    QVERIFY(counts.isValid() && finished.isValid());
    provider.start(files);
    QVERIFY(provider.worker());

    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(log.entries(), expected);
    // Paths come back exactly as they were given.
    QCOMPARE(counts.count(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(counts.at(i).at(0).toString(), files.at(i));
    QCOMPARE(finished.first().at(0).toStringList(), files);
    QTRY_VERIFY(!provider.worker());

    // One application for the whole list, quit at the end; every opened file closed unsaved.
    QCOMPARE(FakeZylServer::applicationsCreated(), 1);
    QCOMPARE(FakeZylServer::journal().last(), QStringLiteral("call Application.Quit()"));
    // A missing file is never sent to the server.
    const int opensSent = names.contains(QStringLiteral("gone.doc")) ? 2 : 3;
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Documents.Open")).size(), opensSent);
    const int opened = opensSent - (failingMember == QLatin1String("Open") ? 1 : 0);
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Document.Close")).size(), opened);
    QVERIFY(FakeZylServer::journal(QStringLiteral("Document.Save")).isEmpty());
    QVERIFY(FakeZylServer::journal(QStringLiteral("Document.SaveAs2")).isEmpty());
}

void tst_VSMZylInfoProvider::serverCannotBeCreated()
{
    FakeZylServer::failCall(QStringLiteral("CreateInstance"), 0, E_ACCESSDENIED);
    const QStringList files{document(QStringLiteral("a.docx"), 2), document(QStringLiteral("b.docx"), 2)};

    VSMZylInfoProvider provider;
    ProviderLog log(&provider);
    provider.start(files);
    QTRY_VERIFY(!provider.worker());
    QCoreApplication::processEvents();
    QCOMPARE(log.entries(), (QStringList{"finished false [a.docx,b.docx]"}));
    QVERIFY(FakeZylServer::journal().isEmpty());
}

void tst_VSMZylInfoProvider::cancelRightAfterStartAndAgain()
{
    // A duplicate path is settled once by a cancel.
    const QString a = document(QStringLiteral("a.docx"), 2);
    const QStringList files{a, document(QStringLiteral("b.docx"), 3), a};
    FakeZylServer::blockAt(QStringLiteral("CreateInstance"), 1);

    VSMZylInfoProvider provider;
    ProviderLog log(&provider);
    QSignalSpy canceled(&provider, &VSMInfoProvider::canceled);
    QVERIFY(canceled.isValid());
    provider.start(files);
    for (int round = 1; round <= 2; ++round) {
        provider.cancel();
        QCOMPARE(canceled.count(), round);
        QStringList settled = log.entries().mid(3 * (round - 1));
        QCOMPARE(settled.size(), 3);
        QCOMPARE(settled.last(), QStringLiteral("finished true [a.docx,b.docx,a.docx]"));
        settled.removeLast();
        settled.sort(); // the reported map decides the order
        QCOMPARE(settled, (QStringList{"a.docx fail 0", "b.docx fail 0"}));
    }

    // The worker still starts and quits the server, but nothing more reaches the page.
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    FakeZylServer::release();
    QTRY_VERIFY(!provider.worker());
    QCoreApplication::processEvents();
    QCOMPARE(log.entries().size(), 6);
    QCOMPARE(FakeZylServer::journal(), QStringList{"call Application.Quit()"});
}

void tst_VSMZylInfoProvider::cancelMidwayReportsTheRest()
{
    const QStringList files{document(QStringLiteral("a.docx"), 2), document(QStringLiteral("b.docx"), 3),
                            document(QStringLiteral("c.docx"), 5)};
    FakeZylServer::blockAt(QStringLiteral("Open"), 2);

    VSMZylInfoProvider provider;
    ProviderLog log(&provider);
    provider.start(files);
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    QTRY_COMPARE(log.entries(), QStringList{"a.docx ok 2"});

    provider.cancel();
    QStringList entries = log.entries();
    QCOMPARE(entries.size(), 4);
    QCOMPARE(entries.takeFirst(), QStringLiteral("a.docx ok 2"));
    QCOMPARE(entries.takeLast(), QStringLiteral("finished true [a.docx,b.docx,c.docx]"));
    entries.sort();
    QCOMPARE(entries, (QStringList{"b.docx fail 0", "c.docx fail 0"}));

    // The file being counted when the cancel came is dropped, the third is never opened.
    FakeZylServer::release();
    QTRY_VERIFY(!provider.worker());
    QCoreApplication::processEvents();
    QCOMPARE(log.entries().size(), 4);
    QCOMPARE(FakeZylServer::journal(QStringLiteral("Documents.Open")).size(), 2);
    QCOMPARE(FakeZylServer::journal().last(), QStringLiteral("call Application.Quit()"));
}

void tst_VSMZylInfoProvider::secondStartKeepsTheFirstRunning()
{
    const QString a = document(QStringLiteral("a.docx"), 2);
    const QString b = document(QStringLiteral("b.docx"), 3);
    FakeZylServer::blockAt(QStringLiteral("CreateInstance"), 1);

    VSMZylInfoProvider provider;
    ProviderLog log(&provider);
    provider.start({a});
    QVERIFY(FakeZylServer::waitUntilBlocked(10000));
    provider.start({b});
    QTRY_COMPARE(log.entries().size(), 2);
    QCOMPARE(log.entries(), (QStringList{"b.docx ok 3", "finished true [b.docx]"}));
    FakeZylServer::release();
    QTRY_COMPARE(log.entries().size(), 4);
    QCOMPARE(log.entries().mid(2), (QStringList{"a.docx ok 2", "finished true [a.docx]"}));
    QCOMPARE(FakeZylServer::applicationsCreated(), 2);
}

QTEST_GUILESS_MAIN(tst_VSMZylInfoProvider)
#include "tst_vsmzylinfoprovider.moc"
