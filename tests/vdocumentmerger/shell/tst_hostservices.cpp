#include <QtTest>

#include "fakemainwindow.h"
#include "shell/cappcontroller.h"
#include "shell/hostservices.h"
#include "shell/usageevents.h"

class tst_HostServices : public QObject {
    Q_OBJECT

private slots:
    void emptyWithoutController();
    void answers_data();
    void answers();
};

void tst_HostServices::emptyWithoutController()
{
    QVERIFY(!appController());
    QVERIFY(!isLoggedIn());
    QVERIFY(userId().isEmpty());
    QVERIFY(startSource().isEmpty());
    requestLogin();
    // Usage events sent this early go nowhere and make no controller either.
    sendUsageEvent(QStringLiteral("vas_wordmerge_show"), {});
    sendPopupEvent(QStringLiteral("fail"), QStringLiteral("show"));
    QVERIFY(!appController());
}

void tst_HostServices::answers_data()
{
    QTest::addColumn<bool>("initialized");
    QTest::addColumn<bool>("withAccount");
    QTest::addColumn<bool>("loggedIn");
    QTest::addColumn<bool>("expectLoggedIn");
    QTest::addColumn<QString>("expectUserId");
    QTest::addColumn<QString>("expectSource");
    QTest::addColumn<int>("expectLoginCalls");

    QTest::newRow("controller_without_container") << false << true << true << false << "" << "" << 0;
    QTest::newRow("container_without_account") << true << false << false << false << "" << "cmdline" << 0;
    QTest::newRow("signed_out_asks_for_login") << true << true << false << false << "u-42" << "cmdline" << 1;
    QTest::newRow("signed_in_no_login_call") << true << true << true << true << "u-42" << "cmdline" << 0;
}

void tst_HostServices::answers()
{
    QFETCH(bool, initialized);
    QFETCH(bool, withAccount);
    QFETCH(bool, loggedIn);
    QFETCH(bool, expectLoggedIn);
    QFETCH(QString, expectUserId);
    QFETCH(QString, expectSource);
    QFETCH(int, expectLoginCalls);

    FakeHost host;
    host.account.setLoggedIn(loggedIn);
    host.account.setUserId(QStringLiteral("u-42"));
    if (!withAccount)
        host.app.setAccount(nullptr);
    host.app.setStartSource(QStringLiteral("cmdline"));
    QVERIFY(CAppController::instance());
    if (initialized)
        QVERIFY(Initialize(&host.app));
    auto forget = qScopeGuard([] { Destroy(); });

    QCOMPARE(isLoggedIn(), expectLoggedIn);
    QCOMPARE(userId(), expectUserId);
    QCOMPARE(startSource(), expectSource);
    requestLogin();
    QCOMPARE(host.account.loginCalls().size(), expectLoginCalls);
    if (expectLoginCalls > 0)
        QVERIFY(host.account.loginCalls().constFirst().isEmpty());
}

QTEST_MAIN(tst_HostServices)
#include "tst_hostservices.moc"
