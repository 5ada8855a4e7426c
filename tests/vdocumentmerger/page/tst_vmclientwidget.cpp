#include <QtTest>

#include "fakemainwindow.h"
#include "host/liolite.h"
#include "page/vmbottomoptionwidget.h"
#include "page/vmclientwidget.h"

class tst_VMClientWidget : public QObject {
    Q_OBJECT

private slots:
    void startFollowsSelection_data();
    void startFollowsSelection();
    void showEventPostsOncePerShow();

private:
    InitializedHost m_host;
};

void tst_VMClientWidget::startFollowsSelection_data()
{
    QTest::addColumn<QList<int>>("selectedCounts");
    QTest::addColumn<bool>("expectEnabled");

    QTest::newRow("no_files") << QList<int>() << false;
    QTest::newRow("one_selected") << QList<int>{1} << false;
    QTest::newRow("two_selected") << QList<int>{2} << true;
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

    auto *button = w.findChild<VLiteButton *>(QStringLiteral("VMStartMergeButton"));
    QVERIFY(button);
    QCOMPARE(button->isEnabled(), expectEnabled);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(spy.count(), expectEnabled ? 1 : 0);
}

void tst_VMClientWidget::showEventPostsOncePerShow()
{
    const int shows = 3;
    m_host.app.setStartSource(QStringLiteral("desktop_menu"));
    m_host.app.clearEvents();
    QWidget host;
    auto *client = new VMClientWidget(&host);
    for (int i = 0; i < shows; ++i) {
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));
        QTRY_COMPARE(m_host.app.eventsNamed(QStringLiteral("vas_wordmerge_show")).size(), i + 1);
        // A second show() of a visible widget is no new show.
        client->show();
        host.hide();
        QVERIFY(!client->isVisible());
    }
    const auto events = m_host.app.eventsNamed(QStringLiteral("vas_wordmerge_show"));
    QCOMPARE(events.size(), shows);
    for (const FakeAppContainer::Event &e : events) {
        QCOMPARE(e.params.size(), 1);
        QCOMPARE(e.params.value(QStringLiteral("src")), QStringLiteral("desktop_menu"));
    }
}

QTEST_MAIN(tst_VMClientWidget)
#include "tst_vmclientwidget.moc"
