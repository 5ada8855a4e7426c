#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include "cloud/vmcloudhelper.h"
#include "fakemainwindow.h"
#include "host/liolite.h"
#include "output/vmclouddirwidget.h"

class tst_VMCloudDirWidget : public QObject {
    Q_OBJECT

private slots:
    void openFolder_data();
    void openFolder();

private:
    InitializedHost m_host;
};

void tst_VMCloudDirWidget::openFolder_data()
{
    QTest::addColumn<bool>("loggedIn");
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<int>("loginCalls");
    QTest::addColumn<int>("openRequests");

    QTest::newRow("logged_in_opens_without_asking") << true << false << 0 << 1;
    QTest::newRow("logged_out_confirm_starts_login") << false << true << 1 << 0;
    QTest::newRow("logged_out_closed_does_nothing") << false << false << 0 << 0;
}

void tst_VMCloudDirWidget::openFolder()
{
    QFETCH(bool, loggedIn);
    QFETCH(bool, confirm);
    QFETCH(int, loginCalls);
    QFETCH(int, openRequests);
    m_host.account.setLoggedIn(loggedIn);
    const int loginsBefore = m_host.account.loginCalls().size();
    QSignalSpy opened(VMCloudHelper::instance(), &VMCloudHelper::openFolderFinished);
    QVERIFY(opened.isValid());

    VMCloudDirWidget w(nullptr);
    VLiteButton *button = w.findChild<VLiteButton *>();
    QVERIFY(button);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));

    QString title, content;
    QStringList buttons;
    QTimer::singleShot(0, [&] {
        auto *dlg = qobject_cast<VLiteContentDlg *>(QApplication::activeModalWidget());
        if (!dlg)
            return;
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

    if (loggedIn) {
        // The request fails here (no drive service) and its reply is not shown.
        QTRY_COMPARE(opened.count(), openRequests);
        QVERIFY(title.isEmpty());
        QVERIFY(!QApplication::activeModalWidget());
    } else {
        QCOMPARE(title, QStringLiteral("Tips"));
        QCOMPARE(content, QStringLiteral("Sorry! You need to login in order to use %1.")
                              .arg(yrt::product::getZYLDriveDisplayName()));
        QCOMPARE(buttons, QStringList{QStringLiteral("Confirm")});
        QTest::qWait(0);
        QCOMPARE(opened.count(), openRequests);
    }
    QCOMPARE(m_host.account.loginCalls().size() - loginsBefore, loginCalls);
}

QTEST_MAIN(tst_VMCloudDirWidget)
#include "tst_vmclouddirwidget.moc"
