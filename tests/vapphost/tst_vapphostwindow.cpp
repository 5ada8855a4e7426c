#include <QtTest>

#include <QAction>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "vappaccount.h"
#include "vappcontainer.h"
#include "vapphostwindow.h"
#include "vapplogindialog.h"
#include "vapptheme.h"

class SkinReceiver : public QObject {
    Q_OBJECT
public:
    QVector<QVariantMap> received;
public slots:
    void onSkinChanged(QVariantMap params) { received << params; }
};

class tst_VAppHostWindow : public QObject {
    Q_OBJECT
private slots:
    void init();
    void windowAnswersForItsContainer();
    void themeSwitchNotifiesSubscribers_data();
    void themeSwitchNotifiesSubscribers();
    void clientWidgetAccountMenuAndClosing();
    void account_signInThroughDialog_data();
    void account_signInThroughDialog();
    void account_signInAndOutOnceEach();
    void account_blankNamesNeverSignIn();
};

void tst_VAppHostWindow::init()
{
    VAppTheme::setScale(0);
    QVERIFY(VAppTheme::apply(QStringLiteral("light")));
}

void tst_VAppHostWindow::windowAnswersForItsContainer()
{
    QTemporaryDir dir;
    VAppContainer container;
    container.setUsageLogPath(dir.filePath("usage.jsonl"));
    auto *window = new VAppHostWindow(&container);
    container.setMainWindow(window);
    // The add-on finds the window by a type check on what the container hands out.
    AppFrameWork::IVAppContainer *asContainer = &container;
    QCOMPARE(dynamic_cast<VAppMainWindow *>(asContainer->mainWindow()), static_cast<VAppMainWindow *>(window));
    QCOMPARE(window->mainWindow(), static_cast<AppFrameWork::IVAppContainer *>(window));

    AppFrameWork::IVAppContainer *viaWindow = window;
    QCOMPARE(viaWindow->account(), container.account());
    QCOMPARE(viaWindow->startInfo(), container.startInfo());
    viaWindow->postEvent(QStringLiteral("vas_wordmerge_show"), {{"src", "desk"}});
    QFile log(dir.filePath("usage.jsonl"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(log.readAll(), QByteArray("{\"event\":\"vas_wordmerge_show\",\"params\":{\"src\":\"desk\"}}\n"));
    SkinReceiver receiver;
    viaWindow->subscribe(QStringLiteral("SkinChanged"), &receiver, "onSkinChanged");
    QCOMPARE(container.notify(QStringLiteral("SkinChanged"), {{"skin", "dark"}}), 1);
    QCOMPARE(receiver.received.size(), 1);

    delete window;
    QCOMPARE(container.mainWindow(), nullptr);
}

void tst_VAppHostWindow::themeSwitchNotifiesSubscribers_data()
{
    QTest::addColumn<QString>("start");
    // "light"/"dark": menu action; "set:<name>": setTheme; "bad:<name>": setTheme refused
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QStringList>("skins");     // the "skin" values notified, in order

    QTest::newRow("dark_and_back_by_menu")
        << "light" << QStringList{"dark", "light"} << QStringList{"dark", "light"};
    QTest::newRow("same_theme_again_is_silent")
        << "light" << QStringList{"light", "set:light"} << QStringList();
    QTest::newRow("dark_start_then_light_by_call")
        << "dark" << QStringList{"set:light", "set:light"} << QStringList{"light"};
    QTest::newRow("unknown_theme_refused") << "light" << QStringList{"bad:sepia"} << QStringList();
}

void tst_VAppHostWindow::themeSwitchNotifiesSubscribers()
{
    QFETCH(QString, start);
    QFETCH(QStringList, actions);
    QFETCH(QStringList, skins);

    QVERIFY(VAppTheme::apply(start));
    VAppContainer container;
    VAppHostWindow window(&container);
    container.setMainWindow(&window);
    QCOMPARE(window.theme(), start);
    QCOMPARE(window.darkThemeAction()->isChecked(), start == QLatin1String("dark"));
    SkinReceiver receiver;
    container.subscribe(QStringLiteral("SkinChanged"), &receiver, "onSkinChanged");
    QSignalSpy spy(&window, &VAppHostWindow::themeChanged);
    QVERIFY(spy.isValid());

    for (const QString &action : actions) {
        if (action.startsWith(QLatin1String("set:"))) {
            QVERIFY(window.setTheme(action.mid(4)));
        } else if (action.startsWith(QLatin1String("bad:"))) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("unknown theme"));
            QVERIFY(!window.setTheme(action.mid(4)));
        } else {
            (action == QLatin1String("dark") ? window.darkThemeAction() : window.lightThemeAction())->trigger();
        }
    }

    QCOMPARE(spy.count(), skins.size());
    QCOMPARE(receiver.received.size(), skins.size());
    for (int i = 0; i < skins.size(); ++i) {
        QCOMPARE(spy.at(i).at(0).toString(), skins.at(i));
        QCOMPARE(receiver.received.at(i), (QVariantMap{{"skin", skins.at(i)}}));
    }
    const QString final = skins.isEmpty() ? start : skins.last();
    QCOMPARE(VAppTheme::current(), final);
    QCOMPARE(window.theme(), final);
    QCOMPARE(window.darkThemeAction()->isChecked(), final == QLatin1String("dark"));
    QCOMPARE(window.lightThemeAction()->isChecked(), final == QLatin1String("light"));
    // Plain Qt widgets (menus, the sign-in dialog) follow through the application palette.
    QCOMPARE(QApplication::palette().color(QPalette::Window).lightness() < 128,
             final == QLatin1String("dark"));
    QCOMPARE(QApplication::palette().color(QPalette::WindowText).lightness() > 128,
             final == QLatin1String("dark"));
}

void tst_VAppHostWindow::clientWidgetAccountMenuAndClosing()
{
    VAppContainer container;
    VAppHostWindow window(&container);
    container.setMainWindow(&window);
    window.setClientWidget(nullptr);
    auto *notice = qobject_cast<QLabel *>(window.centralWidget());
    QVERIFY(notice);
    QVERIFY(!notice->text().isEmpty());
    QPointer<QWidget> client = new QWidget;
    window.setClientWidget(client);
    QCOMPARE(window.centralWidget(), client.data());
    QCOMPARE(client->parentWidget(), &window);

    QSignalSpy closing(&window, &VAppHostWindow::closing);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(window.signInAction()->isEnabled());
    QVERIFY(!window.signOutAction()->isEnabled());
    window.signInAction()->trigger();
    VAppLoginDialog *dialog = container.hostAccount()->loginDialog();
    QVERIFY(dialog);
    QCOMPARE(dialog->parentWidget(), &window);
    dialog->nameEdit()->setText(QStringLiteral("grace"));
    dialog->accept();
    QTRY_VERIFY(container.account()->isLogin());
    QVERIFY(!window.signInAction()->isEnabled());
    QVERIFY(window.signOutAction()->isEnabled());
    window.signOutAction()->trigger();
    QVERIFY(!container.account()->isLogin());
    QVERIFY(window.signInAction()->isEnabled());

    // Closed twice, the window tells once that it closes.
    QVERIFY(window.close());
    window.show();
    QVERIFY(window.close());
    QCOMPARE(closing.count(), 1);
}

void tst_VAppHostWindow::account_signInThroughDialog_data()
{
    QTest::addColumn<QString>("typed");       // null: keep the suggested name
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("signedIn");
    QTest::addColumn<QString>("userId");      // "<local>": the local login name

    QTest::newRow("accept_suggested_local_name") << QString() << true << true << "<local>";
    QTest::newRow("typed_name_trimmed") << "  carol  " << true << true << "carol";
    QTest::newRow("cancel_stays_signed_out") << "dave" << false << false << "";
}

void tst_VAppHostWindow::account_signInThroughDialog()
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

void tst_VAppHostWindow::account_signInAndOutOnceEach()
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

void tst_VAppHostWindow::account_blankNamesNeverSignIn()
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

QTEST_MAIN(tst_VAppHostWindow)
#include "tst_vapphostwindow.moc"
