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
    void loginReturnsAtOnceAndOpensOneDialog();
    void signInAndOutOnceEach();
    void blankNamesNeverSignIn_data();
    void blankNamesNeverSignIn();
};

void tst_VAppAccount::signInThroughDialog_data()
{
    QTest::addColumn<QString>("typed");       // null: keep the suggested name
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("signedIn");
    QTest::addColumn<QString>("userId");      // "<local>": the local login name

    QTest::newRow("accept_suggested_local_name") << QString() << true << true << "<local>";
    QTest::newRow("accept_typed_name") << "bob" << true << true << "bob";
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

    VAppAccount account;
    QSignalSpy spy(&account, &VAppAccount::loginChanged);
    QVERIFY(spy.isValid());
    QVERIFY(!account.isLogin());

    account.login(QVariantMap());
    QPointer<VAppLoginDialog> dialog = account.loginDialog();
    QVERIFY(dialog);
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
    if (signedIn)
        QCOMPARE(spy.at(0).at(0).toBool(), true);
    AppFrameWork::VAppUserInfo info;
    info.userId = QStringLiteral("stale");
    account.userInfo(info);
    QCOMPARE(info.userId, userId);
    QCOMPARE(info.userName.isEmpty(), !signedIn);
}

void tst_VAppAccount::loginReturnsAtOnceAndOpensOneDialog()
{
    QWidget parent;
    parent.show();
    VAppAccount account;
    account.setDialogParent(&parent);
    account.login(QVariantMap());
    VAppLoginDialog *first = account.loginDialog();
    QVERIFY(first);
    QCOMPARE(first->parentWidget(), &parent);
    account.login(QVariantMap());
    QCOMPARE(account.loginDialog(), first);
    QCOMPARE(parent.findChildren<VAppLoginDialog *>().size(), 1);
    first->reject();
    QTRY_VERIFY(!account.loginDialog());
    QVERIFY(!account.isLogin());
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

void tst_VAppAccount::blankNamesNeverSignIn_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << "";
    QTest::newRow("spaces") << "   ";
    QTest::newRow("tab_and_newline") << "\t\n";
}

void tst_VAppAccount::blankNamesNeverSignIn()
{
    QFETCH(QString, name);
    VAppAccount account;
    QSignalSpy spy(&account, &VAppAccount::loginChanged);
    account.signIn(name);
    QVERIFY(!account.isLogin());
    QCOMPARE(spy.count(), 0);

    VAppLoginDialog dialog(QStringLiteral("someone"));
    QPushButton *ok = dialog.buttonBox()->button(QDialogButtonBox::Ok);
    QVERIFY(ok->isEnabled());
    dialog.nameEdit()->setText(name);
    QVERIFY(!ok->isEnabled());
}

QTEST_MAIN(tst_VAppAccount)
#include "tst_vappaccount.moc"
