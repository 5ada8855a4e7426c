#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

#include "fakemainwindow.h"
#include "page/vmclientwidget.h"
#include "shell/cappcontroller.h"
#include "shell/hostservices.h"
#include "shell/usageevents.h"
#include "shell/vmcontentskindlg.h"
#include "engine/vsmzylmerger.h"
#include "fakezylserver.h"
#include "shell/vmenv.h"

#include <unistd.h>

namespace {

const char childModeVariable[] = "TST_CAPPCONTROLLER_CHILD";

// Leaves a working file behind as a failed merge would; with a folder of documents also leaves
// a merge running, held inside its word processor, as the host's window goes. Then lets the
// application object end, which takes the controller with it.
int runChildShutdown(int argc, char **argv, const QString &documents)
{
    {
        QCoreApplication app(argc, argv);
        if (!CAppController::instance())
            return 2;
        QFile leftover(VMEnv::workFilePath(QStringLiteral("left"), QStringLiteral("docx"), 1));
        if (!leftover.open(QIODevice::WriteOnly))
            return 3;
        leftover.write("partial");
        leftover.close();
        VMEnv::instance()->setLocation(1);
        if (documents.isEmpty())
            return 0;

        MergeTask task;
        for (const QString &name : {QStringLiteral("a.docx"), QStringLiteral("b.doc"), QStringLiteral("c.zyl")}) {
            if (!FakeZylServer::writeDocument(documents + '/' + name, {name, name}))
                return 4;
            task.items << MergeItem{1, 2, documents + '/' + name};
        }
        task.outputPath = documents + QStringLiteral("/out.docx");
        task.workPath = VMEnv::workFilePath(QStringLiteral("a"), QStringLiteral("docx"), 2);
        // Open 2 is the target: the merge is held before the second source goes in.
        FakeZylServer::blockAt(QStringLiteral("Open"), 2);
        auto *page = new QObject;
        (new VSMZylMerger(page))->start(task);
        if (!FakeZylServer::waitUntilBlocked(10000))
            return 5;
        delete page;
        FakeZylServer::release();
    }
    const QStringList journal = FakeZylServer::journal();
    if (FakeZylServer::openDocuments() != 0 || journal.isEmpty()
        || journal.last() != QLatin1String("call Application.Quit()"))
        return 6;
    return 0;
}

// Counts the restyles the base class is asked for, and still performs them.
class CountingSkinDlg : public VMContentSkinDlg {
public:
    using VMContentSkinDlg::VMContentSkinDlg;
    int restyles = 0;

protected:
    void changeStyle() override
    {
        ++restyles;
        VMContentSkinDlg::changeStyle();
    }
};

} // namespace

class tst_CAppController : public QObject {
    Q_OBJECT

private slots:
    // These two run first: nothing has been initialised yet.
    void hostServicesEmptyWithoutController();
    void createClientWidgetBeforeInitialize();

    void exportsResolveByPlainName();
    void initializeRejects_data();
    void initializeRejects();
    void initializeTwiceSubscribesTwiceAndRelaysSkin();
    void skinReachesEveryOpenDialogOnly();
    void destroyForgetsContainerAndSilencesEvents();
    void hostServicesAnswer_data();
    void hostServicesAnswer();
    void tempRootRemovedAtApplicationShutdown_data();
    void tempRootRemovedAtApplicationShutdown();
};

void tst_CAppController::hostServicesEmptyWithoutController()
{
    QVERIFY(!appController());
    QVERIFY(!isLoggedIn());
    QVERIFY(userId().isEmpty());
    QVERIFY(startSource().isEmpty());
    requestLogin();
    // Usage events sent this early go nowhere and make no controller either.
    sendUsageEvent(QStringLiteral("vas_wordmerge_show"), {});
    sendPopupEvent(QStringLiteral("fail"), QStringLiteral("show"));
    QVERIFY(!appController());
}

void tst_CAppController::createClientWidgetBeforeInitialize()
{
    QVERIFY(!appController());
    QWidget host;
    QWidget *client = CreateClientWidget(&host);
    QVERIFY(qobject_cast<VMClientWidget *>(client));
    QCOMPARE(client->parent(), &host);
    QVERIFY(appController());
    QVERIFY(!appController()->container());

    // Showing it posts nowhere and must not fail.
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("addfile")}});
}

// The host finds the three entry points by name in the loaded library, as here.
void tst_CAppController::exportsResolveByPlainName()
{
    QLibrary library(QStringLiteral(ADDON_LIBRARY_PATH));
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    using InitializeFn = bool (*)(AppFrameWork::IVAppContainer *);
    using CreateFn = QWidget *(*)(QWidget *);
    using DestroyFn = bool (*)();
    auto initialize = reinterpret_cast<InitializeFn>(library.resolve("Initialize"));
    auto create = reinterpret_cast<CreateFn>(library.resolve("CreateClientWidget"));
    auto destroy = reinterpret_cast<DestroyFn>(library.resolve("Destroy"));
    QVERIFY(initialize);
    QVERIFY(create);
    QVERIFY(destroy);

    FakeHost host;
    QVERIFY(initialize(&host.app));
    QCOMPARE(CAppController::instance()->container(), &host.app);
    QVERIFY(destroy());
    QVERIFY(!CAppController::instance()->container());
}

void tst_CAppController::initializeRejects_data()
{
    QTest::addColumn<int>("mainWindowKind");
    QTest::newRow("null_container") << -1;
    QTest::newRow("container_without_main_window") << 0;
    QTest::newRow("main_window_of_another_class") << 1;
}

void tst_CAppController::initializeRejects()
{
    QFETCH(int, mainWindowKind);

    FakeAppContainer app;
    FakeAppContainer foreignWindow;
    if (mainWindowKind == 1)
        app.setMainWindow(&foreignWindow);
    CAppController *controller = CAppController::instance();
    QVERIFY(controller->uninitialize());

    QVERIFY(!Initialize(mainWindowKind < 0 ? nullptr : &app));
    QVERIFY(!controller->container());
    QVERIFY(app.subscriptions().isEmpty());
    QVERIFY(foreignWindow.subscriptions().isEmpty());
    QVERIFY(Destroy());
}

void tst_CAppController::initializeTwiceSubscribesTwiceAndRelaysSkin()
{
    FakeHost first, second;
    QVERIFY(Initialize(&first.app));
    QVERIFY(Initialize(&second.app));
    CAppController *controller = CAppController::instance();
    QCOMPARE(controller->container(), &second.app);
    QCOMPARE(controller->mainWindow(), &second.window);
    QCOMPARE(controller->account(), &second.account);
    QCOMPARE(first.app.subscriptions().size(), 1);
    QCOMPARE(second.app.subscriptions().size(), 1);
    QCOMPARE(second.app.subscriptions().at(0).notification, QStringLiteral("SkinChanged"));
    QCOMPARE(second.app.subscriptions().at(0).receiver.data(), controller);

    QSignalSpy spy(controller, &CAppController::sigSkinChanged);
    QVERIFY(spy.isValid());
    QCOMPARE(second.app.notify(QStringLiteral("SkinChanged"), {{QStringLiteral("skin"), QStringLiteral("dark")}}), 1);
    QCOMPARE(spy.count(), 1);
    QVERIFY(Destroy());
}

void tst_CAppController::skinReachesEveryOpenDialogOnly()
{
    InitializedHost host;
    QPointer<CountingSkinDlg> closed = new CountingSkinDlg(nullptr, VLiteContentDlg::IconType(5));
    closed->show();
    delete closed;
    QWidget owner;
    auto *first = new CountingSkinDlg(&owner, VLiteContentDlg::IconType(0));
    auto *second = new CountingSkinDlg(&owner, VLiteContentDlg::IconType(3));
    const int firstBefore = first->restyles;
    const int secondBefore = second->restyles;
    QCOMPARE(host.app.notify(QStringLiteral("SkinChanged"), QVariantMap()), 1);
    QCOMPARE(first->restyles, firstBefore + 1);
    QCOMPARE(second->restyles, secondBefore + 1);
}

void tst_CAppController::destroyForgetsContainerAndSilencesEvents()
{
    FakeHost host;
    QVERIFY(Initialize(&host.app));
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("start_up")}});
    QCOMPARE(host.app.events().size(), 1);

    QVERIFY(Destroy());
    CAppController *controller = CAppController::instance();
    QVERIFY(!controller->container());
    QVERIFY(!controller->account());
    QCOMPARE(controller->mainWindow(), &host.window);

    sendClickEvent({{QStringLiteral("type"), QStringLiteral("start_up")}});
    sendPopupEvent(QStringLiteral("fail"), QStringLiteral("show"));
    sendUsageEvent(QStringLiteral("vas_wordmerge_export"), {});
    QCOMPARE(host.app.events().size(), 1);
    QVERIFY(Destroy());
}

void tst_CAppController::hostServicesAnswer_data()
{
    QTest::addColumn<bool>("initialized");
    QTest::addColumn<bool>("withAccount");
    QTest::addColumn<bool>("loggedIn");
    QTest::addColumn<bool>("expectLoggedIn");
    QTest::addColumn<QString>("expectUserId");
    QTest::addColumn<QString>("expectSource");
    QTest::addColumn<int>("expectLoginCalls");

    QTest::newRow("controller_without_container") << false << true << true << false << "" << "" << 0;
    QTest::newRow("container_without_account") << true << false << false << false << "" << "cmdline" << 0;
    QTest::newRow("signed_out_asks_for_login") << true << true << false << false << "u-42" << "cmdline" << 1;
    QTest::newRow("signed_in_no_login_call") << true << true << true << true << "u-42" << "cmdline" << 0;
}

void tst_CAppController::hostServicesAnswer()
{
    QFETCH(bool, initialized);
    QFETCH(bool, withAccount);
    QFETCH(bool, loggedIn);
    QFETCH(bool, expectLoggedIn);
    QFETCH(QString, expectUserId);
    QFETCH(QString, expectSource);
    QFETCH(int, expectLoginCalls);

    FakeHost host;
    host.account.setLoggedIn(loggedIn);
    host.account.setUserId(QStringLiteral("u-42"));
    if (!withAccount)
        host.app.setAccount(nullptr);
    host.app.setStartSource(QStringLiteral("cmdline"));
    QVERIFY(CAppController::instance());
    if (initialized)
        QVERIFY(Initialize(&host.app));
    auto forget = qScopeGuard([] { Destroy(); });

    QCOMPARE(isLoggedIn(), expectLoggedIn);
    QCOMPARE(userId(), expectUserId);
    QCOMPARE(startSource(), expectSource);
    requestLogin();
    QCOMPARE(host.account.loginCalls().size(), expectLoginCalls);
    if (expectLoginCalls > 0)
        QVERIFY(host.account.loginCalls().constFirst().isEmpty());
}

void tst_CAppController::tempRootRemovedAtApplicationShutdown_data()
{
    QTest::addColumn<bool>("midMerge");
    QTest::newRow("after_a_failed_merge") << false;
    QTest::newRow("closed_mid_merge") << true;
}

void tst_CAppController::tempRootRemovedAtApplicationShutdown()
{
    QFETCH(bool, midMerge);
    QTemporaryDir tmp;
    QVERIFY(tmp.isValid());
    QTemporaryDir documents;
    QVERIFY(documents.isValid());
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QString::fromLatin1(childModeVariable), midMerge ? documents.path() : QString());
    env.insert(QStringLiteral("TMPDIR"), tmp.path());
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(child.waitForFinished(30000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 0);
    QVERIFY(QFileInfo(tmp.path()).isDir());
    const QDir root(tmp.path() + QStringLiteral("/vdocumentmerger-%1").arg(::getuid()));
    QVERIFY2(root.exists() && root.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             "the working tree outlived the application");
    QVERIFY2(!QFileInfo::exists(documents.filePath(QStringLiteral("out.docx"))), "a cancelled merge left its output");
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet(childModeVariable))
        return runChildShutdown(argc, argv, qEnvironmentVariable(childModeVariable));
    QApplication app(argc, argv);
    tst_CAppController test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cappcontroller.moc"
