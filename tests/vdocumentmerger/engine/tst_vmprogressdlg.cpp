#include <QLabel>
#include <QPointer>
#include <QtTest>

#include "engine/vmprogressdlg.h"
#include "fakemainwindow.h"

namespace {

class CancelReceiver : public QObject {
    Q_OBJECT
public:
    int cancels = 0;
public slots:
    void onMergeCancel() { ++cancels; }
};

} // namespace

class tst_VMProgressDlg : public QObject {
    Q_OBJECT

private slots:
    void showAndClose_data();
    void showAndClose();

private:
    InitializedHost m_host;
};

void tst_VMProgressDlg::showAndClose_data()
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

void tst_VMProgressDlg::showAndClose()
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

QTEST_MAIN(tst_VMProgressDlg)
#include "tst_vmprogressdlg.moc"
