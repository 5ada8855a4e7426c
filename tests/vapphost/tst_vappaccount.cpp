#include <QtTest>

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>

#include "vappaccount.h"
#include "vapplogindialog.h"

class tst_VAppAccount : public QObject {
    Q_OBJECT
private slots:
    void signInThroughDialog_data();
    void signInThroughDialog();
    void signInAndOutOnceEach();
    void blankNamesNeverSignIn();
};

void tst_VAppAccount::signInThroughDialog_data()
{
    QTest::addColumn<QString>("typed");       // null: keep the suggested name
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("signedIn");
    QTest::addColumn<QString>("userId");      // "<local>": the local login name

    QTest::newRow("accept_suggested_local_name") << QString() << true << true << "<local>";
    QTest::newRow("typed_name_trimmed") << "  carol  " << true << true << "carol";
    QTest::newRow("cancel_stays_signed_out") << "dave" << false << false << "";
}

void tst_VAppAccount::signInThroughDialog()
{
    QFETCH(QString, typed);
    QFETCH(bool, accept);
    QFETCH(bool, signedIn);
    QFETCH(QString, userId);
    if (userId == QLatin1String("<local>"))
        userId = VAppAccount::localUserName();

    QWidget parent;
    parent.show();
    VAppAccount account;
    account.setDialogParent(&parent);
    QSignalSpy spy(&account, &VAppAccount::loginChanged);
    QVERIFY(spy.isValid());
    QVERIFY(!account.isLogin());

    // login() returns at once; asked again while the dialog is open, it opens no second one.
    account.login(QVariantMap());
    QPointer<VAppLoginDialog> dialog = account.loginDialog();
    QVERIFY(dialog);
    account.login(QVariantMap());
    QCOMPARE(account.loginDialog(), dialog.data());
    QCOMPARE(parent.findChildren<VAppLoginDialog *>().size(), 1);
    QTRY_VERIFY(dialog->isVisible());
    QCOMPARE(dialog->nameEdit()->text(), VAppAccount::localUserName());
    if (!typed.isNull()) {
        dialog->nameEdit()->selectAll();
        QTest::keyClicks(dialog->nameEdit(), typed);
    }
    QPushButton *button = dialog->buttonBox()->button(accept ? QDialogButtonBox::Ok
                                                             : QDialogButtonBox::Cancel);
    QVERIFY(button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);

    QTRY_VERIFY(!dialog);
    QCOMPARE(account.isLogin(), signedIn);
    QCOMPARE(spy.count(), signedIn ? 1 : 0);
    AppFrameWork::VAppUserInfo info;
    account.userInfo(info);
    QCOMPARE(info.userId, userId);
    QCOMPARE(info.userName.isEmpty(), !signedIn);
}

void tst_VAppAccount::signInAndOutOnceEach()
{
    VAppAccount account;
    QSignalSpy spy(&account, &VAppAccount::loginChanged);
    account.signIn(QStringLiteral("frank"));
    account.signIn(QStringLiteral("frank"));
    // Signed in already: no dialog and no change.
    account.login(QVariantMap());
    QVERIFY(!account.loginDialog());
    QVERIFY(account.isLogin());
    account.signOut();
    account.signOut();
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toBool(), true);
    QCOMPARE(spy.at(1).at(0).toBool(), false);
    QVERIFY(!account.isLogin());
    AppFrameWork::VAppUserInfo info{QStringLiteral("x"), QStringLiteral("y")};
    account.userInfo(info);
    QVERIFY(info.userId.isEmpty());
    QVERIFY(info.userName.isEmpty());
}

void tst_VAppAccount::blankNamesNeverSignIn()
{
    VAppAccount account;
    QSignalSpy spy(&account, &VAppAccount::loginChanged);
    VAppLoginDialog dialog(QStringLiteral("someone"));
    QPushButton *ok = dialog.buttonBox()->button(QDialogButtonBox::Ok);
    QVERIFY(ok->isEnabled());
    for (const QString name : {"", "   ", "\t\n"}) {
        account.signIn(name);
        QVERIFY(!account.isLogin());
        dialog.nameEdit()->setText(name);
        QVERIFY(!ok->isEnabled());
    }
    QCOMPARE(spy.count(), 0);
}

QTEST_MAIN(tst_VAppAccount)
#include "tst_vappaccount.moc"
