#include <QtTest>

#include <csignal>

#include "vappquitsignals.h"

class tst_VAppQuitSignals : public QObject {
    Q_OBJECT
private slots:
    void signalBecomesQuitRequest_data();
    void signalBecomesQuitRequest();
    void onlyOneWatcherPerProcess();
};

void tst_VAppQuitSignals::signalBecomesQuitRequest_data()
{
    QTest::addColumn<int>("signalNumber");
    // SIGTERM is raised in onlyOneWatcherPerProcess and stops the host in the process test.
    QTest::newRow("SIGINT") << int(SIGINT);
    QTest::newRow("SIGHUP") << int(SIGHUP);
}

void tst_VAppQuitSignals::signalBecomesQuitRequest()
{
    QFETCH(int, signalNumber);
    VAppQuitSignals watcher;
    QVERIFY(watcher.isWatching());
    QSignalSpy spy(&watcher, &VAppQuitSignals::quitRequested);
    QVERIFY(spy.isValid());
    // Two signals in a row: both arrive, in order, and the process survives them.
    QCOMPARE(::raise(signalNumber), 0);
    QCOMPARE(::raise(signalNumber), 0);
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toInt(), signalNumber);
    QCOMPARE(spy.at(1).at(0).toInt(), signalNumber);
}

void tst_VAppQuitSignals::onlyOneWatcherPerProcess()
{
    auto first = std::make_unique<VAppQuitSignals>();
    VAppQuitSignals second;
    QVERIFY(first->isWatching());
    QVERIFY(!second.isWatching());
    QSignalSpy firstSpy(first.get(), &VAppQuitSignals::quitRequested);
    QSignalSpy secondSpy(&second, &VAppQuitSignals::quitRequested);
    QCOMPARE(::raise(SIGTERM), 0);
    QTRY_COMPARE(firstSpy.count(), 1);
    QCOMPARE(secondSpy.count(), 0);

    // Once the first is gone, a new one can take over.
    first.reset();
    VAppQuitSignals third;
    QVERIFY(third.isWatching());
}

QTEST_GUILESS_MAIN(tst_VAppQuitSignals)
#include "tst_vappquitsignals.moc"
