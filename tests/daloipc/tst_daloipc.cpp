#include <QtTest>

#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

#include "daloconfig.h"
#include "dalodriveprocess.h"
#include "daloframe.h"
#include "dalorecords.h"
#include "host/daloipc.h"

using namespace zyl::dalo;

static bool serviceAnswers()
{
    QLocalSocket probe;
    probe.connectToServer(DaloConfig::socketName());
    return probe.waitForConnected(100);
}

static bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

static QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// Records every reply the library delivers.
class Receiver : public QObject {
    Q_OBJECT
public:
    struct Reply {
        bool ok;
        QString id;
        int code;
        QString text; // the cache folder or the open folder
        std::vector<std::string> files;
    };
    QList<Reply> replies;
    int *deliveries = nullptr;

private slots:
    void onUpload(bool ok, QString id, zyl::dalo::UploadFilesToCloudResult result)
    {
        record({ok, id, result.resultCode, QString(), result.cloudFiles});
    }
    void onOpen(bool ok, QString id, OpenVirtualCloudDiskResult result)
    {
        record({ok, id, result.resultCode, QString::fromStdString(result.localFolder), {}});
    }
    void onCache(bool ok, QString id, zyl::dalo::GetCloudFileCachePathResult result)
    {
        record({ok, id, result.resultCode, QString::fromStdString(result.cacheFolder), {}});
    }

private:
    void record(const Reply &reply)
    {
        replies.append(reply);
        if (deliveries)
            ++*deliveries;
    }
};

class tst_DaloIpc : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void upload_data();
    void upload();
    void takenNamesGetNumbers();
    void openAndCache();
    void followsTheSignedInUser();
    void unreadableRequestsKeepTheServiceRunning();
    void refusedCallsAndGoneReceivers();
    void serviceNotAnswering_data();
    void serviceNotAnswering();

private:
    bool startService(const QString &user);
    QString upload(Receiver &receiver, const QString &user, const QString &cloudPath, const QStringList &files,
                   bool create = true);
    Receiver::Reply waitForReply(Receiver &receiver);
    QString userFolder(const QString &user) const { return m_dir->path() + "/drive/" + user; }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<QProcess> m_service;
    QString m_source;
};

void tst_DaloIpc::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    DaloConfig::setSocketName(m_dir->path() + "/drive.sock");
    DaloConfig::setDriveRoot(m_dir->path() + "/drive");
    qputenv("DALO_DRIVE_EXE", DALODRIVE_EXE);
    qunsetenv("DALO_IPC_TIMEOUT_MS");
    // Services started on demand must not outlive the test by much.
    qputenv("DALO_DRIVE_IDLE_MS", "3000");
    m_source = m_dir->path() + "/a.docx";
    QVERIFY(writeFile(m_source, "merged document"));
}

void tst_DaloIpc::cleanup()
{
    if (m_service) {
        ::kill(pid_t(m_service->processId()), SIGCONT);
        m_service->closeWriteChannel();
        const bool ended = m_service->waitForFinished(5000);
        if (!ended) {
            m_service->kill();
            m_service->waitForFinished();
        }
        m_service.reset();
        QVERIFY2(ended, "the service did not end with its input");
    }
    m_dir.reset();
}

bool tst_DaloIpc::startService(const QString &user)
{
    m_service.reset(new QProcess);
    m_service->setProcessChannelMode(QProcess::ForwardedChannels);
    m_service->start(DALODRIVE_EXE, {"--socket", DaloConfig::socketName(), "--drive", DaloConfig::driveRoot(),
                                     "--user", user, "--control-stdin", "--open-with", "true"});
    return m_service->waitForStarted() && QTest::qWaitFor(serviceAnswers, 5000);
}

QString tst_DaloIpc::upload(Receiver &receiver, const QString &user, const QString &cloudPath,
                            const QStringList &files, bool create)
{
    UploadFilesToCloudArg arg;
    arg.__set_userId(user.toStdString());
    arg.__set_cloudPath(cloudPath.toStdString());
    for (const QString &file : files)
        arg.srcFiles.push_back(file.toStdString());
    arg.__set_createWhenNoExists(create);
    return DaloIpcAsynCallEx("uploadFilesToCloud", QGenericArgument("UploadFilesToCloudArg", &arg), &receiver,
                             "onUpload");
}

Receiver::Reply tst_DaloIpc::waitForReply(Receiver &receiver)
{
    const int before = receiver.replies.size();
    if (!QTest::qWaitFor([&] { return receiver.replies.size() > before; }, 10000))
        return {false, QString(), -1, QString(), {}};
    return receiver.replies.last();
}

void tst_DaloIpc::upload_data()
{
    QTest::addColumn<QString>("cloudPath");
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("create");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("landed");

    // @ stands for the test's folder, and escape/ is a link out of the drive.
    const auto refused = [](const char *tag, const char *path, const char *source, bool create) {
        QTest::newRow(tag) << path << source << create << int(DaloResultCode::FailedOnInvalidParameters) << QString();
    };
    QTest::newRow("dot_steps_are_dropped") << "./cloudapp//x/." << "a.docx" << true << int(DaloResultCode::Succeeded)
                                           << "cloudapp/x/a.docx";
    refused("missing_folder_without_create", "cloudapp", "a.docx", false);
    refused("missing_source", "cloudapp", "gone.docx", true);
    refused("empty_path", "", "a.docx", true);
    refused("climbing_path", "cloudapp/../../bob", "a.docx", true);
    refused("absolute_path", "@/outside", "a.docx", true);
    refused("link_leading_out", "escape/x", "a.docx", true);
}

void tst_DaloIpc::upload()
{
    QFETCH(QString, cloudPath);
    QFETCH(QString, source);
    QFETCH(bool, create);
    QFETCH(int, code);
    QFETCH(QString, landed);

    const QString outside = m_dir->path() + "/outside";
    QVERIFY(QDir().mkpath(outside));
    QVERIFY(QDir().mkpath(userFolder("alice")));
    QVERIFY(QFile::link(outside, userFolder("alice") + "/escape"));
    cloudPath.replace("@", m_dir->path());
    QVERIFY(startService("alice"));

    Receiver receiver;
    const QString id = upload(receiver, "alice", cloudPath, {m_dir->path() + '/' + source}, create);
    QVERIFY(!id.isEmpty());
    const Receiver::Reply reply = waitForReply(receiver);
    QVERIFY(reply.ok);
    QCOMPARE(reply.id, id);
    QCOMPARE(reply.code, code);
    if (!landed.isEmpty()) {
        QCOMPARE(reply.files, std::vector<std::string>{landed.toStdString()});
        QCOMPARE(contents(userFolder("alice") + '/' + landed), QByteArray("merged document"));
    }
    QVERIFY(QDir(outside).isEmpty());
    QVERIFY(!QFileInfo::exists(m_dir->path() + "/drive/bob"));
}

void tst_DaloIpc::takenNamesGetNumbers()
{
    QVERIFY(startService("alice"));
    const QString other = m_dir->path() + "/notes";
    QVERIFY(writeFile(other, QByteArray()));

    Receiver receiver;
    QStringList ids;
    for (int i = 0; i < 3; ++i)
        ids << upload(receiver, "alice", "docs", {m_source, other});
    QTRY_COMPARE_WITH_TIMEOUT(receiver.replies.size(), 3, 10000);
    std::vector<std::string> landed;
    for (const Receiver::Reply &reply : qAsConst(receiver.replies)) {
        QCOMPARE(reply.code, int(DaloResultCode::Succeeded));
        landed.insert(landed.end(), reply.files.begin(), reply.files.end());
    }
    std::sort(landed.begin(), landed.end());
    const std::vector<std::string> expected{"docs/a(1).docx", "docs/a(2).docx", "docs/a.docx",
                                            "docs/notes",     "docs/notes(1)",  "docs/notes(2)"};
    QCOMPARE(landed, expected);
    // No half-written file is left behind under any name.
    QCOMPARE(QDir(userFolder("alice") + "/docs").entryList(QDir::Files | QDir::Hidden).size(), 6);
}

void tst_DaloIpc::openAndCache()
{
    QVERIFY(startService("alice"));
    Receiver receiver;
    const auto open = [&](bool create) {
        OpenVirtualCloudDiskArg arg;
        arg.__set_userId("alice");
        arg.__set_cloudPath("cloudapp/documentmerger");
        arg.__set_createWhenNoExists(create);
        DaloIpcAsynCallEx("openVirtualCloudDisk", QGenericArgument("OpenVirtualCloudDiskArg", &arg), &receiver,
                          "onOpen");
        return waitForReply(receiver);
    };
    const auto cache = [&] {
        GetCloudFileCachePathArg arg;
        arg.__set_userId("alice");
        arg.__set_cloudPath("cloudapp/documentmerger");
        DaloIpcAsynCallEx("getCloudFileCachePath", QGenericArgument("GetCloudFileCachePathArg", &arg), &receiver,
                          "onCache");
        return waitForReply(receiver);
    };
    QCOMPARE(open(false).code, int(DaloResultCode::FailedOnInvalidParameters));
    QCOMPARE(cache().code, int(DaloResultCode::FailedOnInvalidParameters));
    const Receiver::Reply opened = open(true);
    QCOMPARE(opened.code, int(DaloResultCode::Succeeded));
    QCOMPARE(opened.text, userFolder("alice") + "/cloudapp/documentmerger");

    upload(receiver, "alice", "cloudapp/documentmerger", {m_source});
    QCOMPARE(waitForReply(receiver).code, int(DaloResultCode::Succeeded));
    Receiver::Reply cached = cache();
    QCOMPARE(cached.code, int(DaloResultCode::Succeeded));
    QVERIFY(!cached.text.startsWith(userFolder("alice")));
    QCOMPARE(contents(cached.text + "/a.docx"), QByteArray("merged document"));

    // Changed and removed drive files show in the next answer.
    QVERIFY(writeFile(opened.text + "/a.docx", "second version"));
    QVERIFY(QFile::rename(opened.text + "/a.docx", opened.text + "/b.docx"));
    cached = cache();
    QCOMPARE(QDir(cached.text).entryList(QDir::Files | QDir::Hidden), QStringList{"b.docx"});
    QCOMPARE(contents(cached.text + "/b.docx"), QByteArray("second version"));
}

void tst_DaloIpc::followsTheSignedInUser()
{
    DaloDriveProcess drive;
    QVERIFY2(drive.start("alice"), qPrintable(drive.errorString()));
    Receiver receiver;
    const QString bob = QString::fromUtf8("b\xc3\xb6" "b");
    const auto uploadAs = [&](const QString &user) {
        upload(receiver, user, "c", {m_source});
        return waitForReply(receiver).code;
    };
    drive.setUser(QString());
    QTRY_COMPARE_WITH_TIMEOUT(uploadAs("alice"), int(DaloResultCode::FailedOnNotLogined), 5000);
    drive.setUser(bob);
    QTRY_COMPARE_WITH_TIMEOUT(uploadAs("alice"), int(DaloResultCode::FailedOnAccountChanged), 5000);
    QCOMPARE(uploadAs(bob), int(DaloResultCode::Succeeded));
    QVERIFY(QFileInfo::exists(m_dir->path() + "/drive/b%C3%B6b/c/a.docx"));
    QVERIFY(!QFileInfo::exists(userFolder("alice")));

    drive.stop();
    QVERIFY(!drive.isRunning());
    QVERIFY(!serviceAnswers());
}

void tst_DaloIpc::unreadableRequestsKeepTheServiceRunning()
{
    QVERIFY(startService("alice"));
    DaloRequestFrame wrongRecord;
    wrongRecord.requestId = "r2";
    wrongRecord.method = "uploadFilesToCloud";
    wrongRecord.recordType = "UploadFilesToCloudArg";
    wrongRecord.record = DaloRecords::toBytes(OpenVirtualCloudDiskArg()).toStdString();
    DaloRequestFrame wrongMethod = wrongRecord;
    wrongMethod.requestId = "r3";
    wrongMethod.method = "deleteEverything";
    const struct {
        QByteArray payload;
        int code;
    } cases[] = {
        {QByteArray("\x0b\x00\x01garbage", 10), DaloResultCode::FailedOnRpc},
        {DaloRecords::toBytes(wrongRecord), DaloResultCode::FailedOnInvalidParameters},
        {DaloRecords::toBytes(wrongMethod), DaloResultCode::FailedOnMethodNoFound},
    };
    for (const auto &c : cases) {
        QLocalSocket socket;
        socket.connectToServer(DaloConfig::socketName());
        QVERIFY(socket.waitForConnected(2000));
        socket.write(DaloFrame::pack(c.payload));
        QByteArray buffer, payload;
        QVERIFY(QTest::qWaitFor([&] {
            buffer += socket.readAll();
            return DaloFrame::take(buffer, &payload) == DaloFrame::Status::Complete;
        }, 5000));
        DaloReplyFrame reply;
        QVERIFY(DaloRecords::fromBytes(payload, &reply));
        QCOMPARE(reply.resultCode, c.code);
    }
    // An oversized frame only costs its own connection.
    QLocalSocket greedy;
    greedy.connectToServer(DaloConfig::socketName());
    QVERIFY(greedy.waitForConnected(2000));
    greedy.write(QByteArray("\x7f\xff\xff\xff", 4));
    QTRY_COMPARE(greedy.state(), QLocalSocket::UnconnectedState);

    Receiver receiver;
    upload(receiver, "alice", "c", {m_source});
    QCOMPARE(waitForReply(receiver).code, int(DaloResultCode::Succeeded));
}

void tst_DaloIpc::refusedCallsAndGoneReceivers()
{
    QVERIFY(startService("alice"));
    Receiver receiver;
    UploadFilesToCloudArg arg;
    const QGenericArgument upload("UploadFilesToCloudArg", &arg);
    QVERIFY(DaloIpcAsynCallEx("openVirtualCloudDisk", upload, &receiver, "onOpen").isEmpty());
    QVERIFY(DaloIpcAsynCallEx("uploadFilesToCloud", upload, nullptr, "onUpload").isEmpty());
    QVERIFY(DaloIpcAsynCallEx("uploadFilesToCloud", QGenericArgument("UploadFilesToCloudArg", nullptr),
                              &receiver, "onUpload").isEmpty());

    const QString first = DaloIpcAsynCallEx("uploadFilesToCloud", upload, &receiver, "onUpload");
    const QString second = DaloIpcAsynCallEx("uploadFilesToCloud", upload, &receiver, "onUpload");
    QVERIFY(!first.isEmpty());
    QVERIFY(first != second);
    // Replies come from the event loop, never during the call.
    QVERIFY(receiver.replies.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(receiver.replies.size(), 2, 10000);

    // A receiver destroyed before its reply arrives is not called.
    int deliveries = 0;
    auto *gone = new Receiver;
    gone->deliveries = &deliveries;
    QVERIFY(!this->upload(*gone, "alice", "c", {m_source}).isEmpty());
    delete gone;
    receiver.deliveries = &deliveries;
    this->upload(receiver, "alice", "c", {m_source});
    QTRY_COMPARE_WITH_TIMEOUT(deliveries, 1, 10000);
    QTRY_COMPARE(QDir(userFolder("alice") + "/c").entryList(QDir::Files).size(), 2);
    QTest::qWait(100);
    QCOMPARE(deliveries, 1);
}

void tst_DaloIpc::serviceNotAnswering_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<int>("code");
    QTest::newRow("not_running_started_on_demand") << "absent" << int(DaloResultCode::Succeeded);
    QTest::newRow("not_running_and_cannot_start") << "unstartable" << int(DaloResultCode::FailedOnIpc);
    QTest::newRow("stopped_and_silent") << "stopped" << int(DaloResultCode::FailedOnIpc);
}

void tst_DaloIpc::serviceNotAnswering()
{
    QFETCH(QString, state);
    QFETCH(int, code);
    if (state == "stopped") {
        QVERIFY(startService("alice"));
        ::kill(pid_t(m_service->processId()), SIGSTOP);
        qputenv("DALO_IPC_TIMEOUT_MS", "2000");
    } else if (state == "unstartable") {
        qputenv("DALO_DRIVE_EXE", QFile::encodeName(m_dir->path() + "/no-such-service"));
    } else {
        qputenv("DALO_DRIVE_IDLE_MS", "500");
    }
    Receiver receiver;
    QElapsedTimer elapsed;
    elapsed.start();
    const QString id = upload(receiver, "alice", "c", {m_source});
    QVERIFY(!id.isEmpty());
    const Receiver::Reply reply = waitForReply(receiver);
    QCOMPARE(reply.id, id);
    QCOMPARE(reply.ok, code == DaloResultCode::Succeeded);
    QCOMPARE(reply.code, code);
    // Failures come quickly; a service started on demand, left alone, goes by itself.
    if (code != DaloResultCode::Succeeded)
        QVERIFY(elapsed.elapsed() < 5000);
    else
        QTRY_VERIFY_WITH_TIMEOUT(!serviceAnswers(), 10000);
}

QTEST_MAIN(tst_DaloIpc)
#include "tst_daloipc.moc"
