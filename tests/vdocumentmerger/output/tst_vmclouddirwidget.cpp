#include <QAccessible>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include "cloud/vmcloudhelper.h"
#include "fakeappaccount.h"
#include "fakeappcontainer.h"
#include "fakemainwindow.h"
#include "host/liolite.h"
#include "output/vmclouddirwidget.h"
#include "shell/pluginexports.h"

class tst_VMCloudDirWidget : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void openButtonNamed();
    void openWithoutLoginAsksToLogIn_data();
    void openWithoutLoginAsksToLogIn();
    void openWhenLoggedInSendsOneRequest();

private:
    static VLiteButton *openButton(VMCloudDirWidget &w)
    {
        for (VLiteButton *b : w.findChildren<VLiteButton *>()) {
            if (b->text() == QLatin1String("open folder"))
                return b;
        }
        return nullptr;
    }

    FakeAppContainer m_app;
    FakeAppAccount m_account;
    FakeMainWindow *m_window = nullptr;
};

void tst_VMCloudDirWidget::initTestCase()
{
    m_window = new FakeMainWindow(&m_app);
    m_app.setAccount(&m_account);
    QVERIFY(Initialize(&m_app));
}

void tst_VMCloudDirWidget::cleanupTestCase()
{
    QVERIFY(Destroy());
    delete m_window;
}

void tst_VMCloudDirWidget::openButtonNamed()
{
    VMCloudDirWidget w(nullptr);
    VLiteButton *button = openButton(w);
    QVERIFY(button);
    QCOMPARE(QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name),
             QStringLiteral("open folder"));
    QVERIFY(button->font().underline());
    const auto labels = w.findChildren<VLiteLabel *>();
    QCOMPARE(labels.size(), 1);
    QCOMPARE(labels.first()->text(), VMCloudHelper::cloudPathDisplayText());
}

void tst_VMCloudDirWidget::openWithoutLoginAsksToLogIn_data()
{
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<int>("loginCalls");

    QTest::newRow("confirmed") << true << 1;
    QTest::newRow("closed") << false << 0;
}

void tst_VMCloudDirWidget::openWithoutLoginAsksToLogIn()
{
    QFETCH(bool, confirm);
    QFETCH(int, loginCalls);
    m_account.setLoggedIn(false);
    const int before = m_account.loginCalls().size();
    QSignalSpy opened(VMCloudHelper::instance(), &VMCloudHelper::openFolderFinished);
    QVERIFY(opened.isValid());

    VMCloudDirWidget w(nullptr);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    VLiteButton *button = openButton(w);
    QVERIFY(button);

    QString title, content;
    QStringList buttons;
    QTimer::singleShot(0, [&] {
        auto *dlg = qobject_cast<VLiteContentDlg *>(QApplication::activeModalWidget());
        QVERIFY(dlg);
        title = dlg->title();
        content = dlg->content();
        for (int b : {VLiteContentDlg::BtnConfirm, VLiteContentDlg::BtnCancel, VLiteContentDlg::BtnThird}) {
            if (dlg->isButtonVisible(b))
                buttons << dlg->buttonText(b);
        }
        if (confirm)
            dlg->button(VLiteContentDlg::BtnConfirm)->click();
        else
            dlg->reject();
    });
    QTest::mouseClick(button, Qt::LeftButton);

    QCOMPARE(title, QStringLiteral("Tips"));
    QCOMPARE(content, QStringLiteral("Sorry! You need to login in order to use %1.")
                          .arg(yrt::product::getZYLDriveDisplayName()));
    QCOMPARE(buttons, QStringList{QStringLiteral("Confirm")});
    QCOMPARE(m_account.loginCalls().size() - before, loginCalls);
    QTest::qWait(0);
    QCOMPARE(opened.count(), 0);
}

void tst_VMCloudDirWidget::openWhenLoggedInSendsOneRequest()
{
    m_account.setLoggedIn(true);
    auto loggedOut = qScopeGuard([this] { m_account.setLoggedIn(false); });
    const int loginCalls = m_account.loginCalls().size();
    QSignalSpy opened(VMCloudHelper::instance(), &VMCloudHelper::openFolderFinished);
    QVERIFY(opened.isValid());

    VMCloudDirWidget w(nullptr);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    VLiteButton *button = openButton(w);
    QVERIFY(button);
    // Nothing modal may come up: the reply is not shown.
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!QApplication::activeModalWidget());
    QTRY_COMPARE(opened.count(), 1);
    QVERIFY(!QApplication::activeModalWidget());
    QCOMPARE(m_account.loginCalls().size(), loginCalls);
}

QTEST_MAIN(tst_VMCloudDirWidget)
#include "tst_vmclouddirwidget.moc"
