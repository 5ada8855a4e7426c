#include <QtTest>

#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QThread>

#include "vappcontainer.h"
#include "vappsingleinstance.h"

namespace {

QString privateServerName()
{
    return QStringLiteral("vapphost-test-%1-%2")
        .arg(QCoreApplication::applicationPid())
        .arg(QRandomGenerator::global()->generate());
}

// Runs a blocking hand-over on a pool thread while this thread serves the event loop.
bool handOverFromOtherThread(const QString &serverName, const QStringList &files, int timeoutMs = 5000)
{
    bool result = false;
    QScopedPointer<QThread> thread(QThread::create([&result, serverName, files, timeoutMs] {
        VAppSingleInstance later(serverName);
        result = later.handOver(files, timeoutMs);
    }));
    thread->start();
    while (!thread->isFinished())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    thread->wait();
    return result;
}

} // namespace

class tst_VAppSingleInstance : public QObject {
    Q_OBJECT
private slots:
    void filesArriveAsSecondInstance_data();
    void filesArriveAsSecondInstance();
    void staleFileSecondListenerAndMalformedMessages();
    void silentServerTimesOut();
    void absolutePaths_leaveUrlsAndEmptyNames();
};

void tst_VAppSingleInstance::filesArriveAsSecondInstance_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("expectedArgs");

    QTest::newRow("spaces_quotes_and_unicode")
        << QStringList{"/d/My Files/\"q\".docx", "/d/报告 März.doc"}
        << "{\"file\":\"/d/My Files/\\\"q\\\".docx|/d/报告 März.doc\"}";
    QTest::newRow("no_files_only_asks_to_be_shown") << QStringList() << "{\"file\":\"\"}";
}

void tst_VAppSingleInstance::filesArriveAsSecondInstance()
{
    QFETCH(QStringList, files);
    QFETCH(QString, expectedArgs);

    const QString name = privateServerName();
    VAppSingleInstance first(name);
    QVERIFY2(first.listen(), qPrintable(first.errorString()));
    QSignalSpy spy(&first, &VAppSingleInstance::filesReceived);
    QVERIFY(spy.isValid());

    QVERIFY(handOverFromOtherThread(name, files));
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toStringList(), files);
    // What the add-on's page is handed; the process test sees it arrive.
    QCOMPARE(VAppContainer::secondInstanceArgs(files), expectedArgs);
}

void tst_VAppSingleInstance::staleFileSecondListenerAndMalformedMessages()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // A full path as name puts the socket file where the test can leave one behind.
    const QString name = dir.filePath("stale.sock");
    QFile leftover(name);
    QVERIFY(leftover.open(QIODevice::WriteOnly));
    leftover.close();
    // With no host running, a later start is refused at once.
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!VAppSingleInstance(name).handOver({"/a.doc"}, 2000));
    QVERIFY(clock.elapsed() < 2000);

    VAppSingleInstance first(name);
    QVERIFY2(first.listen(), qPrintable(first.errorString()));
    VAppSingleInstance second(name);
    QVERIFY(!second.listen());
    QVERIFY(second.errorString().contains(name));
    QSignalSpy spy(&first, &VAppSingleInstance::filesReceived);

    for (const QByteArray message : {"hello\n", "[1,2]\n", "{\"files\":\"/a.doc\"}\n"}) {
        QLocalSocket client;
        client.connectToServer(name);
        QVERIFY(client.waitForConnected(2000));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("malformed"));
        client.write(message);
        QTRY_VERIFY(client.canReadLine());
        QCOMPARE(client.readLine().trimmed(), QByteArray("{\"ok\":false}"));
        QCOMPARE(spy.count(), 0);
    }

    // The first one still serves, and a good message gets through.
    QVERIFY(handOverFromOtherThread(name, {"/ok.doc"}));
    QTRY_COMPARE(spy.count(), 1);
}

void tst_VAppSingleInstance::silentServerTimesOut()
{
    // A server that accepts but never answers, like a hung host.
    const QString name = privateServerName();
    QLocalServer silent;
    QVERIFY(silent.listen(name));
    QElapsedTimer clock;
    clock.start();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("did not answer"));
    QVERIFY(!handOverFromOtherThread(name, {"/a.doc"}, 600));
    QVERIFY2(clock.elapsed() < 3000, "the hand-over must give up near its time-out");
}

// Relative and absolute paths are handed over by the process test.
void tst_VAppSingleInstance::absolutePaths_leaveUrlsAndEmptyNames()
{
    const QStringList files{"file:///a/b.doc", ""};
    QCOMPARE(VAppSingleInstance::absolutePaths(files, QStringLiteral("/work/dir")), files);
}

QTEST_GUILESS_MAIN(tst_VAppSingleInstance)
#include "tst_vappsingleinstance.moc"
