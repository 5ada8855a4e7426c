#include <QtTest>

#include <QAction>
#include <QDialogButtonBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPushButton>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>

#include "vappaccount.h"
#include "vappcommandline.h"
#include "vappcontainer.h"
#include "vapphostwindow.h"
#include "vapplogindialog.h"
#include "vappnotifier.h"
#include "vappquitsignals.h"
#include "vappsingleinstance.h"
#include "vapptheme.h"
#include "vappusagelog.h"

using Params = QHash<QString, QString>;
using Event = QPair<QString, Params>;
Q_DECLARE_METATYPE(Event)
Q_DECLARE_METATYPE(QVector<Event>)

namespace {

QList<QByteArray> readLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QString privateServerName()
{
    return QStringLiteral("vapphost-test-%1-%2")
        .arg(QCoreApplication::applicationPid())
        .arg(QRandomGenerator::global()->generate());
}

// Runs a blocking hand-over on a pool thread while this thread serves the event loop.
bool handOverFromOtherThread(const QString &serverName, const QStringList &files, int timeoutMs = 5000)
{
    bool result = false;
    QScopedPointer<QThread> thread(QThread::create([&result, serverName, files, timeoutMs] {
        VAppSingleInstance later(serverName);
        result = later.handOver(files, timeoutMs);
    }));
    thread->start();
    while (!thread->isFinished())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    thread->wait();
    return result;
}

} // namespace

// Receives notifications by slot name and remembers them in call order.
class Receiver : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    QStringList calls;
    QVector<QVariantMap> maps;
    QVector<QThread *> threads;

public slots:
    void onSkinChanged(QVariantMap params) { take(QStringLiteral("onSkinChanged"), params); }
    void onSecondInstance(QVariantMap params) { take(QStringLiteral("onSecondInstance"), params); }
    void onOther(QVariantMap params) { take(QStringLiteral("onOther"), params); }
    void noArguments() { calls << QStringLiteral("noArguments"); }

private:
    void take(const QString &slot, const QVariantMap &params)
    {
        calls << slot;
        maps << params;
        threads << QThread::currentThread();
    }
};

// A receiver that destroys another while it is being notified.
class Destroyer : public QObject {
    Q_OBJECT
public:
    QObject *victim = nullptr;
public slots:
    void onSkinChanged(QVariantMap) { delete victim; victim = nullptr; }
};

class tst_VAppHost : public QObject {
    Q_OBJECT

private slots:
    void init();
    void window_answersForItsContainer();
    void window_themeSwitchNotifiesSubscribers_data();
    void window_themeSwitchNotifiesSubscribers();
    void window_clientWidgetAccountMenuAndClosing();
    void account_signInThroughDialog_data();
    void account_signInThroughDialog();
    void account_signInAndOutOnceEach();
    void account_blankNamesNeverSignIn();
    void commandLine_validArguments_data();
    void commandLine_validArguments();
    void commandLine_invalidArguments_data();
    void commandLine_invalidArguments();
    void usageLog_eventsReadBack_data();
    void usageLog_eventsReadBack();
    void usageLog_appendsToExistingFileInNewFolders();
    void usageLog_unwritablePathFailsCleanly();
    void usageLog_defaultPathFollowsStateHome();
    void notifier_deliversBySlotName_data();
    void notifier_deliversBySlotName();
    void notifier_destroyedSubscribersSkipped();
    void notifier_invalidSubscriptionsRefused();
    void notifier_duplicatesOnceAndMissingSlotsSkipped();
    void notifier_receiverOnAnotherThreadCalledThere();
    void quitSignals_oneWatcherTurnsSignalsIntoQuitRequests_data();
    void quitSignals_oneWatcherTurnsSignalsIntoQuitRequests();
    void singleInstance_filesArriveAsSecondInstance_data();
    void singleInstance_filesArriveAsSecondInstance();
    void singleInstance_staleFileSecondListenerAndMalformedMessages();
    void singleInstance_silentServerTimesOut();
    void singleInstance_absolutePathsLeaveUrlsAndEmptyNames();
};

void tst_VAppHost::init()
{
    VAppTheme::setScale(0);
    QVERIFY(VAppTheme::apply(QStringLiteral("light")));
}

void tst_VAppHost::commandLine_validArguments_data()
{
    QTest::addColumn<QStringList>("args");
    // Only the options that differ from a plain start.
    QTest::addColumn<QVariantMap>("expected");

    const QStringList odd{"rel/a.docx", "/abs/My|nbsp|Files/b.doc?from=desk", "c d.zyl", ""};
    QTest::newRow("nothing_gives_defaults") << QStringList() << QVariantMap();
    QTest::newRow("files_kept_exactly_as_given") << odd << QVariantMap{{"files", odd}};
    QTest::newRow("src_before_and_after_files")
        << QStringList{"a.doc", "--src", "desk", "b.doc"} << QVariantMap{{"files", QStringList{"a.doc", "b.doc"}}, {"source", "desk"}};
    QTest::newRow("file_after_double_dash_may_start_with_dash")
        << QStringList{"--", "--odd-name.docx"} << QVariantMap{{"files", QStringList{"--odd-name.docx"}}};
    QTest::newRow("signed_out_dark_theme_and_scale") << QStringList{"--signed-out", "--theme", "dark", "--scale", "1.5"}
                                                     << QVariantMap{{"signedOut", true}, {"theme", "dark"}, {"scale", 1.5}};
    QTest::newRow("theme_name_case_ignored") << QStringList{"--theme", "Dark"} << QVariantMap{{"theme", "dark"}};
    QTest::newRow("screenshot_without_delay_gets_default_delay")
        << QStringList{"--screenshot", "/tmp/s.png"} << QVariantMap{{"screenshot", "/tmp/s.png"}, {"quitAfter", 2000}};
    QTest::newRow("screenshot_with_delay") << QStringList{"--screenshot", "/tmp/s.png", "--quit-after", "3000"}
                                           << QVariantMap{{"screenshot", "/tmp/s.png"}, {"quitAfter", 3000}};
    QTest::newRow("short_help_wins_over_bad_value") << QStringList{"--theme", "blue", "-h"} << QVariantMap{{"help", true}};
}

void tst_VAppHost::commandLine_validArguments()
{
    QFETCH(QStringList, args);
    QFETCH(QVariantMap, expected);
    VAppCommandLine commandLine;
    QVERIFY2(commandLine.parse(QStringList{"vapphost"} + args), qPrintable(commandLine.errorString()));
    const VAppCommandLine::Options &o = commandLine.options();
    QCOMPARE(o.helpRequested, expected.value("help", false).toBool());
    if (o.helpRequested)
        return;
    QCOMPARE(o.files, expected.value("files").toStringList());
    QCOMPARE(o.source, expected.value("source").toString());
    QCOMPARE(o.signedOut, expected.value("signedOut", false).toBool());
    QCOMPARE(o.theme, expected.value("theme", "light").toString());
    QCOMPARE(o.scale, expected.value("scale", 0.0).toDouble());
    QCOMPARE(o.screenshotPath, expected.value("screenshot").toString());
    QCOMPARE(o.quitAfterMs, expected.value("quitAfter", -1).toInt());
}

void tst_VAppHost::commandLine_invalidArguments_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("errorMentions");

    QTest::newRow("unknown_option") << QStringList{"--frobnicate"} << "frobnicate";
    QTest::newRow("theme_unknown") << QStringList{"--theme", "blue"} << "blue";
    QTest::newRow("scale_not_a_number") << QStringList{"--scale", "big"} << "big";
    QTest::newRow("scale_zero") << QStringList{"--scale", "0"} << "scale";
    QTest::newRow("scale_too_large") << QStringList{"--scale", "40"} << "40";
    QTest::newRow("quit_after_negative") << QStringList{"--quit-after", "-5"} << "-5";
    QTest::newRow("quit_after_not_a_number") << QStringList{"--quit-after", "soon"} << "soon";
    QTest::newRow("addon_empty_path") << QStringList{"--addon="} << "addon";
}

void tst_VAppHost::commandLine_invalidArguments()
{
    QFETCH(QStringList, args);
    QFETCH(QString, errorMentions);
    VAppCommandLine commandLine;
    QVERIFY(!commandLine.parse(QStringList{"vapphost"} + args));
    QVERIFY2(commandLine.errorString().contains(errorMentions), qPrintable(commandLine.errorString()));
}

void tst_VAppHost::usageLog_eventsReadBack_data()
{
    QTest::addColumn<QVector<Event>>("events");

    QTest::newRow("several_events_in_order") << QVector<Event>{
        {"vas_wordmerge_click", {{"type", "start_up"}}},
        {"vas_wordmerge_popup", {{"type", "processing"}, {"action", "show"}}},
        {"vas_wordmerge_export", {{"count", "3"}, {"format", "docx"}}}};
    QTest::newRow("quotes_newlines_and_unicode") << QVector<Event>{
        {"vas_wordmerge_addfile", {{"name", "Bericht \"März\"\nÜbersicht 报告.docx"},
                                   {"path", "C:\\Users\\x\\a|b"}}}};
}

void tst_VAppHost::usageLog_eventsReadBack()
{
    QFETCH(QVector<Event>, events);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const VAppUsageLog log(dir.filePath("usage.jsonl"));
    for (const Event &e : events)
        QVERIFY(log.append(e.first, e.second));

    const QList<QByteArray> lines = readLines(log.filePath());
    QCOMPARE(lines.size(), events.size());
    for (int i = 0; i < events.size(); ++i) {
        QJsonParseError error;
        const QJsonDocument doc = QJsonDocument::fromJson(lines.at(i), &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        const QJsonObject object = doc.object();
        QCOMPARE(object.keys(), (QStringList{"event", "params"}));
        QCOMPARE(object.value("event").toString(), events.at(i).first);
        const QJsonObject params = object.value("params").toObject();
        QCOMPARE(params.size(), events.at(i).second.size());
        for (auto it = events.at(i).second.cbegin(); it != events.at(i).second.cend(); ++it) {
            QVERIFY2(params.value(it.key()).isString(), qPrintable(it.key()));
            QCOMPARE(params.value(it.key()).toString(), it.value());
        }
    }
}

void tst_VAppHost::usageLog_appendsToExistingFileInNewFolders()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("state/vapphost/usage.jsonl");
    QVERIFY(VAppUsageLog(path).append("vas_wordmerge_show", {{"src", "desk"}}));
    QVERIFY(VAppUsageLog(path).append("vas_wordmerge_show", {{"src", "menu"}}));
    QCOMPARE(readLines(path), (QList<QByteArray>{"{\"event\":\"vas_wordmerge_show\",\"params\":{\"src\":\"desk\"}}",
                                                 "{\"event\":\"vas_wordmerge_show\",\"params\":{\"src\":\"menu\"}}"}));
}

void tst_VAppHost::usageLog_unwritablePathFailsCleanly()
{
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir("folder"));
    QFile plain(dir.filePath("plainfile"));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    plain.write("not a folder");
    plain.close();
    // No path, a folder, a path under a plain file.
    for (const QString &path : {QString(), dir.filePath("folder"), dir.filePath("plainfile/usage.jsonl")})
        QVERIFY2(!VAppUsageLog(path).append("vas_wordmerge_show", {{"src", "desk"}}), qPrintable(path));
    QVERIFY(plain.open(QIODevice::ReadOnly));
    QCOMPARE(plain.readAll(), QByteArray("not a folder"));
}

void tst_VAppHost::usageLog_defaultPathFollowsStateHome()
{
    const QByteArray saved = qgetenv("XDG_STATE_HOME");
    const bool wasSet = qEnvironmentVariableIsSet("XDG_STATE_HOME");
    auto restore = qScopeGuard([&] {
        if (wasSet)
            qputenv("XDG_STATE_HOME", saved);
        else
            qunsetenv("XDG_STATE_HOME");
    });
    // Only an absolute state folder counts; without one the default is still absolute.
    for (const QByteArray &stateHome : {QByteArray("/tmp/vapphost-state-test"), QByteArray("relative/state"), QByteArray()}) {
        if (stateHome.isNull())
            qunsetenv("XDG_STATE_HOME");
        else
            qputenv("XDG_STATE_HOME", stateHome);
        const QString path = VAppUsageLog::defaultFilePath();
        QVERIFY(QDir::isAbsolutePath(path));
        QVERIFY(path.endsWith(QLatin1String("/usage.jsonl")));
        QCOMPARE(path.startsWith(QString::fromLocal8Bit(stateHome) + QLatin1String("/vapphost/")), stateHome.startsWith('/'));
    }
}

void tst_VAppHost::notifier_deliversBySlotName_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QString>("notification");
    QTest::addColumn<QVariantMap>("params");
    QTest::addColumn<QString>("expectedSlot");

    QTest::newRow("slot_macro_form") << QByteArray(SLOT(onSkinChanged(QVariantMap))) << "SkinChanged"
                                     << QVariantMap{{"skin", "light"}} << "onSkinChanged";
    QTest::newRow("signature_without_macro_code_several_keys_and_types")
        << QByteArray("onOther(QVariantMap)") << "Custom"
        << QVariantMap{{"n", 3}, {"flag", true}, {"list", QStringList{"x", "y"}}} << "onOther";
}

void tst_VAppHost::notifier_deliversBySlotName()
{
    QFETCH(QByteArray, slot);
    QFETCH(QString, notification);
    QFETCH(QVariantMap, params);
    QFETCH(QString, expectedSlot);

    VAppNotifier notifier;
    Receiver receiver;
    Receiver bystander;
    QVERIFY(notifier.subscribe(notification, &receiver, slot.constData()));
    QVERIFY(notifier.subscribe(QStringLiteral("Unrelated"), &bystander, "onOther"));

    QCOMPARE(notifier.notify(notification, params), 1);
    QCOMPARE(receiver.calls, QStringList{expectedSlot});
    QCOMPARE(receiver.maps.first(), params);
    QCOMPARE(receiver.threads.first(), QThread::currentThread());
    QVERIFY(bystander.calls.isEmpty());

    QCOMPARE(notifier.notify(QStringLiteral("NobodyListens"), params), 0);
    QCOMPARE(receiver.calls.size(), 1);
}

void tst_VAppHost::notifier_destroyedSubscribersSkipped()
{
    VAppNotifier notifier;
    Receiver first;
    auto *gone = new Receiver;
    Destroyer destroyer;
    destroyer.victim = new Receiver;
    QVERIFY(notifier.subscribe("SkinChanged", &first, "onSkinChanged"));
    QVERIFY(notifier.subscribe("SkinChanged", gone, "onSkinChanged"));
    QVERIFY(notifier.subscribe("SkinChanged", &destroyer, "onSkinChanged"));
    // Destroyed by the one before it while the notification is under way.
    QVERIFY(notifier.subscribe("SkinChanged", destroyer.victim, "onSkinChanged"));
    QCOMPARE(notifier.subscriberCount("SkinChanged"), 4);
    delete gone;
    QCOMPARE(notifier.subscriberCount("SkinChanged"), 3);

    QCOMPARE(notifier.notify("SkinChanged", {{"skin", "dark"}}), 2);
    QCOMPARE(first.calls, QStringList{"onSkinChanged"});
    QVERIFY(!destroyer.victim);
    QCOMPARE(notifier.subscriberCount("SkinChanged"), 2);
}

void tst_VAppHost::notifier_invalidSubscriptionsRefused()
{
    VAppNotifier notifier;
    Receiver receiver;
    const struct {
        const char *notification;
        QObject *receiver;
        const char *slot;
    } cases[] = {
        {"SkinChanged", nullptr, "onSkinChanged"},
        {"SkinChanged", &receiver, nullptr},
        {"SkinChanged", &receiver, ""},
        {"", &receiver, "onSkinChanged"},
    };
    for (const auto &c : cases) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused"));
        QVERIFY(!notifier.subscribe(c.notification, c.receiver, c.slot));
        QCOMPARE(notifier.subscriberCount(c.notification), 0);
    }
    QVERIFY(receiver.calls.isEmpty());
}

void tst_VAppHost::notifier_duplicatesOnceAndMissingSlotsSkipped()
{
    VAppNotifier notifier;
    Receiver wrong;
    Receiver right;
    QVERIFY(notifier.subscribe("SkinChanged", &wrong, "noSuchSlot"));
    QVERIFY(notifier.subscribe("SkinChanged", &wrong, "noArguments"));
    QVERIFY(notifier.subscribe("SkinChanged", &right, "onSkinChanged"));
    QVERIFY(notifier.subscribe("SkinChanged", &right, SLOT(onSkinChanged(QVariantMap))));
    QVERIFY(notifier.subscribe("SkinChanged", &right, "onOther"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("noSuchSlot"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("noArguments"));
    QCOMPARE(notifier.notify("SkinChanged", {{"skin", "dark"}}), 2);
    QVERIFY(wrong.calls.isEmpty());
    QCOMPARE(right.calls, (QStringList{"onSkinChanged", "onOther"}));
}

void tst_VAppHost::notifier_receiverOnAnotherThreadCalledThere()
{
    QThread worker;
    worker.start();
    auto stop = qScopeGuard([&worker] { worker.quit(); worker.wait(); });
    auto *receiver = new Receiver;
    receiver->moveToThread(&worker);
    connect(&worker, &QThread::finished, receiver, &QObject::deleteLater);

    VAppNotifier notifier;
    QVERIFY(notifier.subscribe("SkinChanged", receiver, "onSkinChanged"));
    QCOMPARE(notifier.notify("SkinChanged", {{"skin", "dark"}}), 1);
    int calls = 0;
    QThread *calledOn = nullptr;
    QVariantMap params;
    QTRY_VERIFY([&] {
        QMetaObject::invokeMethod(receiver, [&] {
            calls = receiver->calls.size();
            calledOn = calls ? receiver->threads.first() : nullptr;
            params = calls ? receiver->maps.first() : QVariantMap();
        }, Qt::BlockingQueuedConnection);
        return calls == 1;
    }());
    QCOMPARE(calledOn, &worker);
    QCOMPARE(params, (QVariantMap{{"skin", "dark"}}));
}

void tst_VAppHost::quitSignals_oneWatcherTurnsSignalsIntoQuitRequests_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGINT") << int(SIGINT);
    QTest::newRow("SIGHUP") << int(SIGHUP);
    // Also stops the host in the process test.
    QTest::newRow("SIGTERM") << int(SIGTERM);
}

void tst_VAppHost::quitSignals_oneWatcherTurnsSignalsIntoQuitRequests()
{
    QFETCH(int, signalNumber);
    auto first = std::make_unique<VAppQuitSignals>();
    VAppQuitSignals second;
    QVERIFY(first->isWatching());
    QVERIFY(!second.isWatching());
    QSignalSpy spy(first.get(), &VAppQuitSignals::quitRequested);
    QSignalSpy secondSpy(&second, &VAppQuitSignals::quitRequested);
    // Two signals in a row: both arrive, in order, and the process survives them.
    QCOMPARE(::raise(signalNumber), 0);
    QCOMPARE(::raise(signalNumber), 0);
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toInt(), signalNumber);
    QCOMPARE(spy.at(1).at(0).toInt(), signalNumber);
    QCOMPARE(secondSpy.count(), 0);

    // Once the first is gone, a new one can take over.
    first.reset();
    VAppQuitSignals third;
    QVERIFY(third.isWatching());
}

void tst_VAppHost::singleInstance_filesArriveAsSecondInstance_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("expectedArgs");

    QTest::newRow("spaces_quotes_and_unicode")
        << QStringList{"/d/My Files/\"q\".docx", "/d/报告 März.doc"}
        << "{\"file\":\"/d/My Files/\\\"q\\\".docx|/d/报告 März.doc\"}";
    QTest::newRow("no_files_only_asks_to_be_shown") << QStringList() << "{\"file\":\"\"}";
}

void tst_VAppHost::singleInstance_filesArriveAsSecondInstance()
{
    QFETCH(QStringList, files);
    QFETCH(QString, expectedArgs);

    const QString name = privateServerName();
    VAppSingleInstance first(name);
    QVERIFY2(first.listen(), qPrintable(first.errorString()));
    QSignalSpy spy(&first, &VAppSingleInstance::filesReceived);

    QVERIFY(handOverFromOtherThread(name, files));
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toStringList(), files);
    // What the add-on's page is handed; the process test sees it arrive.
    QCOMPARE(VAppContainer::secondInstanceArgs(files), expectedArgs);
}

void tst_VAppHost::singleInstance_staleFileSecondListenerAndMalformedMessages()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // A full path as name puts the socket file where the test can leave one behind.
    const QString name = dir.filePath("stale.sock");
    QFile leftover(name);
    QVERIFY(leftover.open(QIODevice::WriteOnly));
    leftover.close();
    // With no host running, a later start is refused at once.
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!VAppSingleInstance(name).handOver({"/a.doc"}, 2000));
    QVERIFY(clock.elapsed() < 2000);

    VAppSingleInstance first(name);
    QVERIFY2(first.listen(), qPrintable(first.errorString()));
    VAppSingleInstance second(name);
    QVERIFY(!second.listen());
    QVERIFY(second.errorString().contains(name));
    QSignalSpy spy(&first, &VAppSingleInstance::filesReceived);

    for (const QByteArray message : {"hello\n", "[1,2]\n", "{\"files\":\"/a.doc\"}\n"}) {
        QLocalSocket client;
        client.connectToServer(name);
        QVERIFY(client.waitForConnected(2000));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("malformed"));
        client.write(message);
        QTRY_VERIFY(client.canReadLine());
        QCOMPARE(client.readLine().trimmed(), QByteArray("{\"ok\":false}"));
        QCOMPARE(spy.count(), 0);
    }

    // The first one still serves, and a good message gets through.
    QVERIFY(handOverFromOtherThread(name, {"/ok.doc"}));
    QTRY_COMPARE(spy.count(), 1);
}

void tst_VAppHost::singleInstance_silentServerTimesOut()
{
    // A server that accepts but never answers, like a hung host.
    const QString name = privateServerName();
    QLocalServer silent;
    QVERIFY(silent.listen(name));
    QElapsedTimer clock;
    clock.start();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("did not answer"));
    QVERIFY(!handOverFromOtherThread(name, {"/a.doc"}, 600));
    QVERIFY2(clock.elapsed() < 3000, "the hand-over must give up near its time-out");
}

// Relative and absolute paths are handed over by the process test.
void tst_VAppHost::singleInstance_absolutePathsLeaveUrlsAndEmptyNames()
{
    const QStringList files{"file:///a/b.doc", ""};
    QCOMPARE(VAppSingleInstance::absolutePaths(files, QStringLiteral("/work/dir")), files);
}

void tst_VAppHost::window_answersForItsContainer()
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
    Receiver receiver;
    viaWindow->subscribe(QStringLiteral("SkinChanged"), &receiver, "onSkinChanged");
    QCOMPARE(container.notify(QStringLiteral("SkinChanged"), {{"skin", "dark"}}), 1);
    QCOMPARE(receiver.maps.size(), 1);

    delete window;
    QCOMPARE(container.mainWindow(), nullptr);
}

void tst_VAppHost::window_themeSwitchNotifiesSubscribers_data()
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

void tst_VAppHost::window_themeSwitchNotifiesSubscribers()
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
    Receiver receiver;
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
    QCOMPARE(receiver.maps.size(), skins.size());
    for (int i = 0; i < skins.size(); ++i) {
        QCOMPARE(spy.at(i).at(0).toString(), skins.at(i));
        QCOMPARE(receiver.maps.at(i), (QVariantMap{{"skin", skins.at(i)}}));
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

void tst_VAppHost::window_clientWidgetAccountMenuAndClosing()
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

void tst_VAppHost::account_signInThroughDialog_data()
{
    QTest::addColumn<QString>("typed");       // null: keep the suggested name
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("signedIn");
    QTest::addColumn<QString>("userId");      // "<local>": the local login name

    QTest::newRow("accept_suggested_local_name") << QString() << true << true << "<local>";
    QTest::newRow("typed_name_trimmed") << "  carol  " << true << true << "carol";
    QTest::newRow("cancel_stays_signed_out") << "dave" << false << false << "";
}

void tst_VAppHost::account_signInThroughDialog()
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

void tst_VAppHost::account_signInAndOutOnceEach()
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

void tst_VAppHost::account_blankNamesNeverSignIn()
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

QTEST_MAIN(tst_VAppHost)
#include "tst_vapphost.moc"
