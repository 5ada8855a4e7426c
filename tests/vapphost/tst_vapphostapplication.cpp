#include <QtTest>

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include "vappaccount.h"

// Runs the real host program; paths of the program and the stand-in libraries come from CMake.
namespace {

struct LoggedEvent {
    QString name;
    QVariantMap params;
};

// The events in the usage log at path, or only those called name.
QVector<LoggedEvent> readLog(const QString &path, const QString &name = QString())
{
    QVector<LoggedEvent> events;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return events;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (!line.isEmpty() && (name.isEmpty() || object.value("event").toString() == name))
            events.append({object.value("event").toString(), object.value("params").toObject().toVariantMap()});
    }
    return events;
}

} // namespace

class tst_VAppHostApplication : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void failedStart_data();
    void failedStart();
    void startRecordAndAccountReachAddon_data();
    void startRecordAndAccountReachAddon();
    void secondStartHandsFilesOver();
    void screenshotWithRealAddon();

private:
    QProcess *startHost(const QStringList &args, const QString &workingDir = QString());
    int runHost(const QStringList &args, QByteArray *err, int timeoutMs = 60000);

    QTemporaryDir m_dir;
    QString m_serverName;
};

void tst_VAppHostApplication::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY2(QFileInfo::exists(VAPPHOST_EXE), VAPPHOST_EXE);
    QVERIFY2(QFileInfo::exists(PROBE_ADDON), PROBE_ADDON);
    m_serverName = m_dir.filePath(QStringLiteral("instance.sock"));
}

QProcess *tst_VAppHostApplication::startHost(const QStringList &args, const QString &workingDir)
{
    auto *process = new QProcess(this);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("VAPPHOST_SERVER_NAME"), m_serverName);
    env.insert(QStringLiteral("XDG_STATE_HOME"), m_dir.filePath(QStringLiteral("state")));
    process->setProcessEnvironment(env);
    process->setWorkingDirectory(workingDir.isEmpty() ? m_dir.path() : workingDir);
    process->start(QStringLiteral(VAPPHOST_EXE), args);
    return process;
}

// The exit code, or -1 after a crash or a time-out; err gets what the host wrote to stderr.
int tst_VAppHostApplication::runHost(const QStringList &args, QByteArray *err, int timeoutMs)
{
    QScopedPointer<QProcess> process(startHost(args));
    const bool finished = process->waitForFinished(timeoutMs);
    if (!finished) {
        process->kill();
        process->waitForFinished();
    }
    *err = process->readAllStandardError();
    return finished && process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1;
}

void tst_VAppHostApplication::failedStart_data()
{
    // <dir> stands for the test's folder, which holds a text file garbage.so and a file blocker.
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("stderrMentions");

    QTest::newRow("unknown_option") << QStringList{"--bogus"} << 1 << QStringList{"bogus"};
    const QStringList files{"--quit-after", "5000", "/some/a.docx"};
    QTest::newRow("addon_missing") << QStringList{"--addon", "<dir>/nowhere/libvdocumentmerger.so"} + files << 2
                                   << QStringList{"<dir>/nowhere/libvdocumentmerger.so", "does not exist"};
    QTest::newRow("addon_not_a_library") << QStringList{"--addon", "<dir>/garbage.so"} + files << 2
                                         << QStringList{"<dir>/garbage.so", "cannot load"};
    QTest::newRow("addon_without_destroy") << QStringList{"--addon", PARTIAL_ADDON} + files << 2
                                           << QStringList{PARTIAL_ADDON, "export Destroy"};
    QTest::newRow("screenshot_unwritable")
        << QStringList{"--addon", PROBE_ADDON, "--screenshot", "<dir>/blocker/s.png", "--quit-after", "100"} << 3
        << QStringList{"screenshot"};
}

void tst_VAppHostApplication::failedStart()
{
    QFETCH(QStringList, args);
    QFETCH(int, exitCode);
    QFETCH(QStringList, stderrMentions);
    for (const char *name : {"garbage.so", "blocker"}) {
        QFile file(m_dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("this is text, not a shared library\n");
    }
    const QString log = m_dir.filePath(QStringLiteral("failure.jsonl"));
    QFile::remove(log);
    args.replaceInStrings(QLatin1String("<dir>"), m_dir.path());

    QByteArray err;
    QCOMPARE(runHost(args + QStringList{"--usage-log", log}, &err), exitCode);
    for (QString mention : stderrMentions) {
        mention.replace(QLatin1String("<dir>"), m_dir.path());
        QVERIFY2(err.contains(mention.toLocal8Bit()), err.constData());
    }
    // An add-on that cannot be used is never initialised.
    if (exitCode == 2)
        QVERIFY(readLog(log).isEmpty());
}

void tst_VAppHostApplication::startRecordAndAccountReachAddon_data()
{
    QTest::addColumn<QStringList>("extraArgs");
    QTest::addColumn<QString>("src");
    QTest::addColumn<QString>("filesJson");
    QTest::addColumn<QString>("signedIn");
    QTest::addColumn<bool>("localUser");
    QTest::addColumn<QSize>("screenshotSize");

    QTest::newRow("signed_out_without_files")
        << QStringList{"--signed-out"} << "" << "[]" << "0" << false << QSize();
    // Files reach the add-on exactly as given; the window's screenshot is taken at the scaled size.
    QTest::newRow("files_as_given_dark_theme_scale_and_screenshot")
        << QStringList{"--theme", "dark", "--scale", "1.25", "--src", "desk", "rel/a.docx", "/abs/My|nbsp|Files/b.doc?from=desk"}
        << "desk" << "[\"rel/a.docx\",\"/abs/My|nbsp|Files/b.doc?from=desk\"]" << "1" << true << QSize(1375, 900);
}

void tst_VAppHostApplication::startRecordAndAccountReachAddon()
{
    QFETCH(QStringList, extraArgs);
    QFETCH(QString, src);
    QFETCH(QString, filesJson);
    QFETCH(QString, signedIn);
    QFETCH(bool, localUser);
    QFETCH(QSize, screenshotSize);

    const QString log = m_dir.filePath(QStringLiteral("%1.jsonl").arg(QTest::currentDataTag()));
    const QString shot = m_dir.filePath(QStringLiteral("shots/%1.png").arg(QTest::currentDataTag()));
    if (screenshotSize.isValid())
        extraArgs << "--screenshot" << shot;
    QByteArray err;
    QVERIFY2(runHost(QStringList{"--addon", PROBE_ADDON, "--usage-log", log, "--quit-after", "200"} + extraArgs, &err) == 0,
             err.constData());
    if (screenshotSize.isValid())
        QCOMPARE(QImage(shot, "PNG").size(), screenshotSize);

    const QVector<LoggedEvent> events = readLog(log);
    QVERIFY(events.size() >= 2);
    QCOMPARE(events.first().name, QStringLiteral("probe_initialize"));
    const QVariantMap init = events.first().params;
    QCOMPARE(init.value("main_window").toString(), QStringLiteral("VAppMainWindow"));
    QCOMPARE(init.value("src").toString(), src);
    QCOMPARE(init.value("files").toString(), filesJson);
    QCOMPARE(init.value("signed_in").toString(), signedIn);
    QCOMPARE(init.value("user_id").toString(), localUser ? VAppAccount::localUserName() : QString());
    QCOMPARE(events.last().name, QStringLiteral("probe_destroy"));
    QCOMPARE(readLog(log, "probe_destroy").size(), 1);
    QCOMPARE(readLog(log, "probe_skin_changed").size(), 0);
}

void tst_VAppHostApplication::secondStartHandsFilesOver()
{
    const QString log = m_dir.filePath(QStringLiteral("second.jsonl"));
    QScopedPointer<QProcess> first(startHost({"--addon", PROBE_ADDON, "--usage-log", log,
                                              "--quit-after", "60000", "/first/start.docx"}));
    auto stopFirst = qScopeGuard([&first] {
        first->terminate();
        if (!first->waitForFinished(5000)) {
            first->kill();
            first->waitForFinished();
        }
    });
    QTRY_VERIFY_WITH_TIMEOUT(!readLog(log, "probe_initialize").isEmpty(), 30000);

    QTemporaryDir elsewhere;
    QScopedPointer<QProcess> second(startHost({"--addon", PROBE_ADDON, "--usage-log", log,
                                               "rel dir/b.doc", "/abs/c|nbsp|d.zyl?x=1"},
                                              elsewhere.path()));
    QVERIFY(second->waitForFinished(30000));
    QCOMPARE(second->exitStatus(), QProcess::NormalExit);
    QVERIFY2(second->exitCode() == 0, second->readAllStandardError().constData());

    QTRY_COMPARE_WITH_TIMEOUT(readLog(log, "probe_second_instance").size(), 1, 10000);
    const QVariantMap params = readLog(log, "probe_second_instance").first().params;
    QCOMPARE(params.keys(), QStringList{"args"});
    QCOMPARE(params.value("args").toString(),
             QStringLiteral("{\"file\":\"%1/rel dir/b.doc|/abs/c|nbsp|d.zyl?x=1\"}").arg(elsewhere.path()));
    // The second start never loaded the add-on itself.
    QCOMPARE(readLog(log, "probe_initialize").size(), 1);
    QCOMPARE(first->state(), QProcess::Running);

    // Asked to stop by a signal, the host still closes properly and lets the add-on clean up.
    stopFirst.dismiss();
    first->terminate();
    QVERIFY(first->waitForFinished(30000));
    QCOMPARE(first->exitStatus(), QProcess::NormalExit);
    QCOMPARE(first->exitCode(), 0);
    QCOMPARE(readLog(log, "probe_destroy").size(), 1);
    QCOMPARE(readLog(log).last().name, QStringLiteral("probe_destroy"));
}

void tst_VAppHostApplication::screenshotWithRealAddon()
{
    // The default add-on path of the program: <bin>/../lib/libvdocumentmerger.so.
    const QString addon = QStringLiteral(REAL_ADDON);
    if (!QFileInfo::exists(addon))
        QSKIP("the add-on library is not built in this tree");

    const QString shot = m_dir.filePath(QStringLiteral("real.png"));
    const QString log = m_dir.filePath(QStringLiteral("real.jsonl"));
    QByteArray err;
    QVERIFY2(runHost({"--screenshot", shot, "--quit-after", "3000", "--src", "desk", "--usage-log", log}, &err, 120000) == 0,
             err.constData());
    const QImage image(shot, "PNG");
    QVERIFY(!image.isNull());
    const QVector<LoggedEvent> shows = readLog(log, "vas_wordmerge_show");
    QCOMPARE(shows.size(), 1);
    QCOMPARE(shows.first().params.value("src").toString(), QStringLiteral("desk"));
}

QTEST_GUILESS_MAIN(tst_VAppHostApplication)
#include "tst_vapphostapplication.moc"
