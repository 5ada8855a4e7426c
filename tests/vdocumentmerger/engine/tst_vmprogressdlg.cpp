#include <QLabel>
#include <QPointer>
#include <QtTest>

#include "engine/vmprogressdlg.h"
#include "fakeappcontainer.h"
#include "fakemainwindow.h"
#include "shell/pluginexports.h"

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
    void initTestCase();
    void cleanupTestCase();
    void init();

    void content_data();
    void content();
    void closing_data();
    void closing();

private:
    QStringList popupActions() const;

    FakeAppContainer m_app;
    FakeMainWindow *m_mainWindow = nullptr;
};

void tst_VMProgressDlg::initTestCase()
{
    m_mainWindow = new FakeMainWindow(&m_app);
    QVERIFY(Initialize(&m_app));
}

void tst_VMProgressDlg::cleanupTestCase()
{
    QVERIFY(Destroy());
    delete m_mainWindow;
}

void tst_VMProgressDlg::init()
{
    m_app.clearEvents();
}

QStringList tst_VMProgressDlg::popupActions() const
{
    QStringList actions;
    for (const FakeAppContainer::Event &event : m_app.eventsNamed(QStringLiteral("vas_wordmerge_popup"))) {
        if (event.params.value(QStringLiteral("type")) == QStringLiteral("processing"))
            actions << event.params.value(QStringLiteral("action"));
    }
    return actions;
}

void tst_VMProgressDlg::content_data()
{
    QTest::addColumn<int>("totalPages");
    QTest::addColumn<QString>("text");
    const QString plain = QStringLiteral("Merging, please wait...");
    const QString large = QStringLiteral("Merging, the total number of merged pages is large, Please wait...");
    QTest::newRow("999_pages") << 999 << plain;
    QTest::newRow("1000_pages") << 1000 << large;
    QTest::newRow("25000_pages") << 25000 << large;
}

void tst_VMProgressDlg::content()
{
    QFETCH(int, totalPages);
    QFETCH(QString, text);
    QWidget page;
    const QTime before = QTime::currentTime();
    QPointer<VMProgressDlg> dialog = VMProgressDlg::showMergeProgress(&page, &page, totalPages);
    QVERIFY(dialog->isVisible());
    QVERIFY(dialog->isModal());
    QCOMPARE(dialog->title(), QStringLiteral("Merging"));
    QCOMPARE(dialog->content(), text);
    bool textShown = false;
    for (const QLabel *label : dialog->findChildren<QLabel *>())
        textShown = textShown || (label->isVisible() && label->text() == text);
    QVERIFY(textShown);
    QVERIFY(!dialog->isButtonVisible(VLiteContentDlg::BtnConfirm));
    QVERIFY(dialog->showTime() >= before);
    QCOMPARE(popupActions(), QStringList{QStringLiteral("show")});
    dialog->accept();
    QTRY_VERIFY(dialog.isNull());
}

void tst_VMProgressDlg::closing_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("withReceiver");
    QTest::addColumn<int>("cancels");

    QTest::newRow("escape_cancels") << "escape" << true << 1;
    QTest::newRow("cancel_button_cancels") << "cancel_button" << true << 1;
    QTest::newRow("reject_cancels") << "reject" << true << 1;
    QTest::newRow("accept_is_silent") << "accept" << true << 0;
    QTest::newRow("escape_without_receiver_only_closes") << "escape" << false << 0;
}

void tst_VMProgressDlg::closing()
{
    QFETCH(QString, how);
    QFETCH(bool, withReceiver);
    QFETCH(int, cancels);

    QWidget page;
    CancelReceiver receiver;
    QPointer<VMProgressDlg> dialog =
        VMProgressDlg::showMergeProgress(&page, withReceiver ? &receiver : nullptr, 1200);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    if (how == "escape")
        QTest::keyClick(dialog, Qt::Key_Escape);
    else if (how == "cancel_button")
        QTest::mouseClick(dialog->button(VLiteContentDlg::BtnCancel), Qt::LeftButton);
    else if (how == "reject")
        dialog->reject();
    else
        dialog->accept();

    QTRY_VERIFY(dialog.isNull());
    QCOMPARE(receiver.cancels, cancels);
    QStringList expected{QStringLiteral("show")};
    if (cancels)
        expected << QStringLiteral("click_close");
    QCOMPARE(popupActions(), expected);
}

QTEST_MAIN(tst_VMProgressDlg)
#include "tst_vmprogressdlg.moc"
