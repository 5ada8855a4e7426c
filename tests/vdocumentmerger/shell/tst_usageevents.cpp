#include <QtTest>

#include "fakeappcontainer.h"
#include "fakemainwindow.h"
#include "shell/cappcontroller.h"
#include "shell/pluginexports.h"
#include "shell/usageevents.h"

using Params = QHash<QString, QString>;

class tst_UsageEvents : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void sent_data();
    void sent();
    void silentWithoutContainer();

private:
    FakeAppContainer m_app;
    FakeMainWindow *m_window = nullptr;
};

void tst_UsageEvents::initTestCase()
{
    // Nothing exists yet: every send returns quietly.
    QVERIFY(!appController());
    sendUsageEvent(QStringLiteral("vas_wordmerge_show"), {});
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("addfile")}});
    sendPopupEvent(QStringLiteral("fail"), QStringLiteral("show"));
    QVERIFY(!appController());

    m_window = new FakeMainWindow(&m_app);
    QVERIFY(Initialize(&m_app));
}

void tst_UsageEvents::cleanup()
{
    m_app.clearEvents();
}

void tst_UsageEvents::sent_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("name");
    QTest::addColumn<Params>("params");
    QTest::addColumn<QString>("expectedName");
    QTest::addColumn<Params>("expectedParams");

    const Params addfile{{"mode", "drop"}, {"num", "2"}, {"page_num", "3,-"}};
    QTest::newRow("usage_event_unchanged") << 0 << "vas_wordmerge_addfile" << addfile << "vas_wordmerge_addfile"
                                           << addfile;
    QTest::newRow("usage_event_no_params") << 0 << "vas_wordmerge_show" << Params() << "vas_wordmerge_show"
                                           << Params();
    QTest::newRow("click_type_kept_with_trailing_space")
        << 1 << QString() << Params{{"type", "deletefile "}} << "vas_wordmerge_click"
        << Params{{"type", "deletefile "}};
    QTest::newRow("click_without_type") << 1 << QString() << Params() << "vas_wordmerge_click" << Params();
    QTest::newRow("popup_show") << 2 << QString() << Params{{"type", "wrong_num"}, {"action", "show"}}
                                << "vas_wordmerge_popup" << Params{{"type", "wrong_num"}, {"action", "show"}};
    QTest::newRow("popup_after_close") << 2 << QString() << Params{{"type", "done"}, {"action", "click_openfile"}}
                                       << "vas_wordmerge_popup"
                                       << Params{{"type", "done"}, {"action", "click_openfile"}};
}

void tst_UsageEvents::sent()
{
    QFETCH(int, kind);
    QFETCH(QString, name);
    QFETCH(Params, params);
    QFETCH(QString, expectedName);
    QFETCH(Params, expectedParams);

    switch (kind) {
    case 0:
        sendUsageEvent(name, params);
        break;
    case 1:
        sendClickEvent(params);
        break;
    default:
        sendPopupEvent(params.value(QStringLiteral("type")), params.value(QStringLiteral("action")));
        break;
    }
    QCOMPARE(m_app.events().size(), 1);
    QCOMPARE(m_app.events().at(0).name, expectedName);
    QCOMPARE(m_app.events().at(0).params, expectedParams);
}

void tst_UsageEvents::silentWithoutContainer()
{
    QVERIFY(Destroy());
    sendUsageEvent(QStringLiteral("vas_wordmerge_show"), {});
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("move")}});
    sendPopupEvent(QStringLiteral("processing"), QStringLiteral("show"));
    QVERIFY(m_app.events().isEmpty());

    QVERIFY(Initialize(&m_app));
    sendPopupEvent(QStringLiteral("processing"), QStringLiteral("click_close"));
    QCOMPARE(m_app.events().size(), 1);
    delete m_window;
    m_window = nullptr;
    QVERIFY(Destroy());
}

QTEST_MAIN(tst_UsageEvents)
#include "tst_usageevents.moc"
