#include <QLabel>
#include <QPointer>
#include <QtTest>

#include "engine/vmprogressdlg.h"
#include "fakemainwindow.h"
#include "host/liolite.h"
#include "page/vmbottomoptionwidget.h"
#include "page/vmclientwidget.h"

namespace {

// Stands in for the page, which the progress dialog tells of a cancel by slot name.
class CancelReceiver : public QObject {
    Q_OBJECT
public:
    int cancels = 0;
public slots:
    void onMergeCancel() { ++cancels; }
};

} // namespace

// The add-on's client widget with its start button, and the progress dialog a merge shows.
class tst_VMClientWidget : public QObject {
    Q_OBJECT

private slots:
    void startFollowsSelection_data();
    void startFollowsSelection();
    void showEventPostsOncePerShow();
    void progressDialogShowAndClose_data();
    void progressDialogShowAndClose();

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

void tst_VMClientWidget::progressDialogShowAndClose_data()
{
    QTest::addColumn<int>("totalPages");
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("withReceiver");
    QTest::addColumn<int>("cancels");

    QTest::newRow("999_pages_escape_cancels") << 999 << "escape" << true << 1;
    QTest::newRow("1000_pages_cancel_button_cancels") << 1000 << "cancel_button" << true << 1;
    QTest::newRow("accept_is_silent") << 1200 << "accept" << true << 0;
    QTest::newRow("escape_without_receiver_only_closes") << 1200 << "escape" << false << 0;
}

void tst_VMClientWidget::progressDialogShowAndClose()
{
    QFETCH(int, totalPages);
    QFETCH(QString, how);
    QFETCH(bool, withReceiver);
    QFETCH(int, cancels);
    m_host.app.clearEvents();

    QWidget page;
    CancelReceiver receiver;
    const QTime before = QTime::currentTime();
    QPointer<VMProgressDlg> dialog =
        VMProgressDlg::showMergeProgress(&page, withReceiver ? &receiver : nullptr, totalPages);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    // The progress bar's content repeats the dialog's text line in a label of its own.
    const QString text = totalPages < 1000
        ? QStringLiteral("Merging, please wait...")
        : QStringLiteral("Merging, the total number of merged pages is large, Please wait...");
    bool textShown = false;
    for (const QLabel *label : dialog->findChildren<QLabel *>())
        textShown = textShown || (label->isVisible() && label->text() == text);
    QVERIFY(textShown);
    QVERIFY(dialog->showTime() >= before);

    if (how == "escape")
        QTest::keyClick(dialog, Qt::Key_Escape);
    else if (how == "cancel_button")
        QTest::mouseClick(dialog->button(VLiteContentDlg::BtnCancel), Qt::LeftButton);
    else
        dialog->accept();

    QTRY_VERIFY(dialog.isNull());
    QCOMPARE(receiver.cancels, cancels);
    QStringList expected{QStringLiteral("show")};
    if (cancels)
        expected << QStringLiteral("click_close");
    QStringList actions;
    for (const FakeAppContainer::Event &event : m_host.app.eventsNamed(QStringLiteral("vas_wordmerge_popup"))) {
        QCOMPARE(event.params.value(QStringLiteral("type")), QStringLiteral("processing"));
        actions << event.params.value(QStringLiteral("action"));
    }
    QCOMPARE(actions, expected);
}

QTEST_MAIN(tst_VMClientWidget)
#include "tst_vmclientwidget.moc"
