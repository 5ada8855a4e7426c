#include <QLayout>
#include <QtTest>

#include "fakeappcontainer.h"
#include "fakemainwindow.h"
#include "host/liolite.h"
#include "page/vmbottomoptionwidget.h"
#include "page/vmclientwidget.h"
#include "shell/pluginexports.h"
#include "table/vmfileoptionwidget.h"

Q_DECLARE_METATYPE(QMargins)

class tst_VMClientWidget : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();

    void startFollowsSelection_data();
    void startFollowsSelection();
    void showEventPostsOncePerShow_data();
    void showEventPostsOncePerShow();
    void showWithoutHostPostsNothing();

private:
    static VLiteButton *startButton(const VMClientWidget &w)
    {
        return w.findChild<VLiteButton *>(QStringLiteral("VMStartMergeButton"));
    }

    FakeAppContainer m_app;
    FakeMainWindow *m_window = nullptr;
};

void tst_VMClientWidget::initTestCase()
{
    m_window = new FakeMainWindow(&m_app);
    m_app.setStartSource(QStringLiteral("desktop_menu"));
    QVERIFY(Initialize(&m_app));
}

void tst_VMClientWidget::cleanupTestCase()
{
    QVERIFY(Destroy());
    delete m_window;
}

void tst_VMClientWidget::cleanup()
{
    m_app.clearEvents();
}

void tst_VMClientWidget::startFollowsSelection_data()
{
    QTest::addColumn<QList<int>>("selectedCounts");
    QTest::addColumn<bool>("expectEnabled");

    QTest::newRow("no_files") << QList<int>() << false;
    QTest::newRow("zero_selected") << QList<int>{0} << false;
    QTest::newRow("one_selected") << QList<int>{1} << false;
    QTest::newRow("two_selected") << QList<int>{2} << true;
    QTest::newRow("many_selected") << QList<int>{100} << true;
    QTest::newRow("second_then_back_to_one") << QList<int>{1, 2, 1} << false;
    QTest::newRow("down_then_up_again") << QList<int>{3, 0, 2} << true;
}

void tst_VMClientWidget::startFollowsSelection()
{
    QFETCH(QList<int>, selectedCounts);
    QFETCH(bool, expectEnabled);

    VMClientWidget w(nullptr);
    QSignalSpy spy(w.bottomOptionWidget(), &VMBottomOptionWidget::sigStartMerger);
    QVERIFY(spy.isValid());
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    for (int selected : selectedCounts)
        w.onSelectedItemCountChange(selected, 100);

    VLiteButton *button = startButton(w);
    QVERIFY(button);
    QCOMPARE(button->isEnabled(), expectEnabled);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(spy.count(), expectEnabled ? 1 : 0);
}

void tst_VMClientWidget::showEventPostsOncePerShow_data()
{
    QTest::addColumn<int>("shows");
    QTest::newRow("shown_once") << 1;
    QTest::newRow("hidden_and_shown_again") << 2;
    QTest::newRow("three_shows") << 3;
}

void tst_VMClientWidget::showEventPostsOncePerShow()
{
    QFETCH(int, shows);

    QWidget host;
    auto *client = new VMClientWidget(&host);
    QVERIFY(m_app.events().isEmpty());
    for (int i = 0; i < shows; ++i) {
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));
        QTRY_COMPARE(m_app.eventsNamed(QStringLiteral("vas_wordmerge_show")).size(), i + 1);
        // A second show() of a visible widget is no new show.
        client->show();
        host.hide();
        QVERIFY(!client->isVisible());
    }
    const auto events = m_app.eventsNamed(QStringLiteral("vas_wordmerge_show"));
    QCOMPARE(events.size(), shows);
    for (const FakeAppContainer::Event &e : events) {
        QCOMPARE(e.params.size(), 1);
        QCOMPARE(e.params.value(QStringLiteral("src")), QStringLiteral("desktop_menu"));
    }
}

void tst_VMClientWidget::showWithoutHostPostsNothing()
{
    QVERIFY(Destroy());
    auto reinit = qScopeGuard([this] { QVERIFY(Initialize(&m_app)); });
    VMClientWidget w(nullptr);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    QVERIFY(m_app.events().isEmpty());
}

QTEST_MAIN(tst_VMClientWidget)
#include "tst_vmclientwidget.moc"
