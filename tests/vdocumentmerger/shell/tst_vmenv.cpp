#include <QDBusConnection>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

#include "host/liolite.h"
#include "shell/vmenv.h"
#include "shell/vmworkfolders.h"

namespace {

const char fileManagerService[] = "org.freedesktop.FileManager1";

mode_t modeOf(const QString &path)
{
    struct stat st = {};
    if (::lstat(QFile::encodeName(path).constData(), &st) != 0)
        return 0;
    return st.st_mode & 0777;
}

// Stands in for the desktop's file manager on a private bus.
class FakeFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
public:
    struct Call {
        QString method;
        QStringList uris;
    };
    QList<Call> calls;

public slots:
    void ShowItems(const QStringList &uris, const QString &startupId)
    {
        Q_UNUSED(startupId)
        calls.append({QStringLiteral("ShowItems"), uris});
    }
    void ShowFolders(const QStringList &uris, const QString &startupId)
    {
        Q_UNUSED(startupId)
        calls.append({QStringLiteral("ShowFolders"), uris});
    }
};

// Receives what would otherwise go to the desktop's default handlers.
class UrlSink : public QObject {
    Q_OBJECT
public:
    QList<QUrl> opened;

public slots:
    void open(const QUrl &url) { opened.append(url); }
};

} // namespace

class tst_VMEnv : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void workFilePath_data();
    void workFilePath();
    void workFoldersByKindAndCopyPath();
    void removeDirRecursively_data();
    void removeDirRecursively();
    void privateRoot_data();
    void privateRoot();
    void staleTreesRemoved();
    void processTreeIsPrivateAndRemovedAlone();
    void showInExplorer_data();
    void showInExplorer();
    void openDocumentWithoutLauncher();

private:
    bool startPrivateBus();

    QTemporaryDir m_busDir;
    QProcess m_bus;
    FakeFileManager m_fileManager;
    UrlSink m_urlSink;

    static QString mergeDest() { return VMEnv::tempRoot() + QStringLiteral("/mergedest"); }
    static void touch(const QString &path)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        QFile f(path);
        QVERIFY2(f.open(QIODevice::WriteOnly), qPrintable(path));
        f.write("x");
    }
};

// Runs before anything touches the session bus, so the add-on's calls go to the private one.
void tst_VMEnv::initTestCase()
{
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &m_urlSink, "open");
    if (!startPrivateBus())
        qWarning("no private session bus; the file-manager cases will be skipped");
}

bool tst_VMEnv::startPrivateBus()
{
    if (!m_busDir.isValid())
        return false;
    // No service folders: nothing on this bus can be started on demand.
    QFile config(m_busDir.filePath(QStringLiteral("session.conf")));
    if (!config.open(QIODevice::WriteOnly))
        return false;
    config.write(QStringLiteral(
                     "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
                     "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
                     "<busconfig><type>session</type><listen>unix:dir=%1</listen>"
                     "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                     "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>")
                     .arg(m_busDir.path())
                     .toUtf8());
    config.close();
    m_bus.start(QStringLiteral("dbus-daemon"),
                {QStringLiteral("--config-file=") + config.fileName(), QStringLiteral("--nofork"),
                 QStringLiteral("--print-address=1")});
    if (!m_bus.waitForStarted(5000) || !m_bus.waitForReadyRead(5000))
        return false;
    const QByteArray address = m_bus.readLine().trimmed();
    if (address.isEmpty())
        return false;
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    return QDBusConnection::sessionBus().isConnected();
}

void tst_VMEnv::init()
{
    VMEnv::removeDirRecursively(VMEnv::tempRoot());
    QVERIFY(!QFileInfo::exists(VMEnv::tempRoot()));
}

void tst_VMEnv::cleanupTestCase()
{
    VMEnv::removeDirRecursively(VMEnv::tempRoot());
    m_bus.kill();
    m_bus.waitForFinished(5000);
}

void tst_VMEnv::workFilePath_data()
{
    QTest::addColumn<QStringList>("existing");
    QTest::addColumn<QString>("expectedName");

    const QString stem = QStringLiteral("Report_20240305091530");
    QTest::newRow("empty_folder_gets_plain_name") << QStringList() << stem + ".docx";
    QTest::newRow("plain_and_1_taken_gets_2")
        << QStringList{stem + ".docx", stem + "(1).docx"} << stem + "(2).docx";
    QTest::newRow("other_suffix_does_not_collide") << QStringList{stem + ".doc"} << stem + ".docx";
    QTest::newRow("only_2_taken_plain_wins") << QStringList{stem + "(2).docx"} << stem + ".docx";
    // A trailing slash makes a folder: it takes the name as a file would.
    QTest::newRow("folder_takes_plain_name") << QStringList{stem + ".docx/"} << stem + "(1).docx";
}

void tst_VMEnv::workFilePath()
{
    QFETCH(QStringList, existing);
    QFETCH(QString, expectedName);

    for (const QString &name : existing) {
        if (name.endsWith('/'))
            QVERIFY(QDir().mkpath(mergeDest() + '/' + name));
        else
            touch(mergeDest() + '/' + name);
    }

    const QDateTime at(QDate(2024, 3, 5), QTime(9, 15, 30));
    const QString path = VMEnv::workFilePath(QStringLiteral("Report"), QStringLiteral("docx"), 2, at);
    QCOMPARE(path, mergeDest() + '/' + expectedName);
    for (const QString &name : existing)
        QVERIFY2(QFileInfo::exists(mergeDest() + '/' + name), "an existing working file was touched");
}

void tst_VMEnv::workFoldersByKindAndCopyPath()
{
    const QList<QPair<int, QString>> kinds{{0, "handycopy"}, {1, "tempsplit"}, {2, "mergedest"},
                                           {3, "misc"},      {7, "misc"},      {-1, "misc"}};
    for (const auto &kind : kinds) {
        const QFileInfo info(VMEnv::workFilePath(QStringLiteral("a b"), QStringLiteral("zyl"), kind.first));
        QCOMPARE(info.absolutePath(), VMEnv::tempRoot() + '/' + kind.second);
        QVERIFY2(QFileInfo(info.absolutePath()).isDir(), "the working folder was not created");
        // "a b_" + 14 digits + ".zyl"
        QVERIFY(QRegularExpression(QStringLiteral("^a b_\\d{14}\\.zyl$")).match(info.fileName()).hasMatch());
    }

    const QString path = VMEnv::workCopyPath(QStringLiteral("/somewhere/else/My.report.v2.docx"), 1);
    const QFileInfo info(QDir::fromNativeSeparators(path));
    QCOMPARE(info.absolutePath(), VMEnv::tempRoot() + QStringLiteral("/tempsplit"));
    QVERIFY(info.fileName().startsWith(QStringLiteral("My.report.v2_")));
    QCOMPARE(info.suffix(), QStringLiteral("docx"));
    QVERIFY(!info.exists());
}

void tst_VMEnv::removeDirRecursively_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<bool>("linkOut");

    QTest::newRow("nested_three_levels")
        << QStringList{"a.docx", "x/b.doc", "x/y/c.zyl", "x/y/z/d.txt"} << QStringList{"x/y/z/empty"} << false;
    QTest::newRow("hidden_lock_file") << QStringList{"tempsplit/.~lock.a.docx#", "tempsplit/a.docx"}
                                      << QStringList{".hidden"} << false;
    QTest::newRow("link_to_outside_folder") << QStringList{"a.docx"} << QStringList() << true;
}

void tst_VMEnv::removeDirRecursively()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, folders);
    QFETCH(bool, linkOut);

    QTemporaryDir base;
    QVERIFY(base.isValid());
    const QString root = base.filePath(QStringLiteral("victim"));
    QVERIFY(QDir().mkpath(root));
    for (const QString &f : files)
        touch(root + '/' + f);
    for (const QString &d : folders)
        QVERIFY(QDir().mkpath(root + '/' + d));
    const QString sibling = base.filePath(QStringLiteral("documents/sibling.docx"));
    touch(sibling);
    if (linkOut)
        QVERIFY(QFile::link(base.filePath(QStringLiteral("documents")), root + QStringLiteral("/link")));

    VMEnv::removeDirRecursively(root);
    QVERIFY(!QFileInfo::exists(root));
    // A missing folder or none at all is no error.
    VMEnv::removeDirRecursively(root);
    VMEnv::removeDirRecursively(QString());
    QVERIFY2(QFileInfo::exists(sibling), "removal went beyond the folder or into a linked one");
}

void tst_VMEnv::privateRoot_data()
{
    QTest::addColumn<QString>("planted");
    QTest::addColumn<bool>("foreignUser");
    QTest::addColumn<bool>("usualNameUsed");

    QTest::newRow("nothing_there") << "" << false << true;
    QTest::newRow("own_folder_open_to_all_is_narrowed") << "folder" << false << true;
    QTest::newRow("link_to_a_folder") << "link" << false << false;
    QTest::newRow("dangling_link") << "dangling" << false << false;
    QTest::newRow("plain_file") << "file" << false << false;
    QTest::newRow("folder_of_another_user") << "folder" << true << false;
}

void tst_VMEnv::privateRoot()
{
    QFETCH(QString, planted);
    QFETCH(bool, foreignUser);
    QFETCH(bool, usualNameUsed);

    QTemporaryDir temp;
    QVERIFY(temp.isValid());
    // Another user's folder is one owned by anybody but the user asking.
    const uint uid = foreignUser ? ::getuid() + 1 : ::getuid();
    const QString usual = temp.filePath(QStringLiteral("vdocumentmerger-%1").arg(uid));
    const QString elsewhere = temp.filePath(QStringLiteral("elsewhere"));
    QVERIFY(QDir().mkpath(elsewhere));
    if (planted == QLatin1String("folder")) {
        QVERIFY(QDir().mkpath(usual));
        QVERIFY(::chmod(QFile::encodeName(usual).constData(), 0777) == 0);
    } else if (planted == QLatin1String("link")) {
        QVERIFY(QFile::link(elsewhere, usual));
    } else if (planted == QLatin1String("dangling")) {
        QVERIFY(QFile::link(temp.filePath(QStringLiteral("nowhere")), usual));
    } else if (planted == QLatin1String("file")) {
        QFile file(usual);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    const QString root = VMWorkFolders::privateRoot(temp.path(), uid);
    QCOMPARE(root == usual, usualNameUsed);
    const QFileInfo info(root);
    QVERIFY(info.isDir());
    QVERIFY(!info.isSymLink());
    QCOMPARE(info.ownerId(), ::getuid());
    QCOMPARE(modeOf(root), mode_t(0700));
    QCOMPARE(QFileInfo(root).absolutePath(), temp.path());
    if (!usualNameUsed) {
        QVERIFY2(QDir(elsewhere).isEmpty(), "the planted link was followed");
        QVERIFY(!QFileInfo::exists(temp.filePath(QStringLiteral("nowhere"))));
    }
}

void tst_VMEnv::staleTreesRemoved()
{
    QTemporaryDir root;
    QVERIFY(root.isValid());
    QProcess ended;
    ended.start(QStringLiteral("true"), QStringList());
    QVERIFY(ended.waitForStarted());
    const qint64 endedPid = ended.processId();
    QVERIFY(ended.waitForFinished());
    const QString endedTree = root.filePath(QString::number(endedPid));
    const QString ownTree = root.filePath(QString::number(::getpid()));
    const QString runningTree = root.filePath(QString::number(::getppid()));
    const QString otherName = root.filePath(QStringLiteral("keep-me"));
    for (const QString &tree : {endedTree, ownTree, runningTree, otherName})
        QVERIFY(QDir().mkpath(tree + QStringLiteral("/mergedest")));

    VMWorkFolders::removeStaleTrees(root.path());
    QVERIFY2(!QFileInfo::exists(endedTree), "the tree of an ended process stayed");
    QVERIFY2(!QFileInfo::exists(ownTree), "an earlier tree with this process's id stayed");
    QVERIFY2(QFileInfo::exists(runningTree), "the tree of a running process was removed");
    QVERIFY(QFileInfo::exists(otherName));
}

void tst_VMEnv::processTreeIsPrivateAndRemovedAlone()
{
    const QString path = VMWorkFolders::filePath(QStringLiteral("a"), QStringLiteral("docx"), 2,
                                                 QDateTime::currentDateTime());
    QVERIFY(!path.isEmpty());
    const QString tree = VMWorkFolders::processRoot();
    QCOMPARE(QFileInfo(tree).fileName(), QString::number(::getpid()));
    QCOMPARE(QFileInfo(tree).absolutePath(), VMWorkFolders::userRoot());
    for (const QString &folder : {VMWorkFolders::userRoot(), tree, tree + QStringLiteral("/mergedest")})
        QCOMPARE(modeOf(folder), mode_t(0700));

    const QString neighbour = VMWorkFolders::userRoot() + '/' + QString::number(::getppid());
    QVERIFY(QDir().mkpath(neighbour + QStringLiteral("/tempsplit")));
    VMWorkFolders::removeProcessRoot();
    QVERIFY(!QFileInfo::exists(tree));
    QVERIFY2(QFileInfo::exists(neighbour + QStringLiteral("/tempsplit")), "another process's tree was removed");
    VMWorkFolders::removeRecursively(neighbour);
}

void tst_VMEnv::showInExplorer_data()
{
    QTest::addColumn<bool>("folder");
    QTest::addColumn<bool>("fileManager");
    QTest::newRow("file_is_selected_in_its_folder") << false << true;
    QTest::newRow("folder_is_opened") << true << true;
    QTest::newRow("without_file_manager_file_opens_its_folder") << false << false;
    QTest::newRow("without_file_manager_folder_opens_itself") << true << false;
}

void tst_VMEnv::showInExplorer()
{
    QFETCH(bool, folder);
    QFETCH(bool, fileManager);
    for (const QString &missing : {QString(), QDir::tempPath() + QStringLiteral("/no/such/file.docx"),
                                   QDir::tempPath() + QStringLiteral("/no/such/folder/")})
        QVERIFY(!VMEnv::showInExplorer(missing));
    if (fileManager && !QDBusConnection::sessionBus().isConnected())
        QSKIP("no private session bus");

    QDBusConnection service = QDBusConnection::connectToBus(
        QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")), QStringLiteral("fake-file-manager"));
    auto disconnect = qScopeGuard([&] {
        service.unregisterService(QString::fromLatin1(fileManagerService));
        service.unregisterObject(QStringLiteral("/org/freedesktop/FileManager1"));
        QDBusConnection::disconnectFromBus(QStringLiteral("fake-file-manager"));
    });
    if (fileManager) {
        QVERIFY(service.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &m_fileManager,
                                       QDBusConnection::ExportAllSlots));
        QVERIFY(service.registerService(QString::fromLatin1(fileManagerService)));
    }
    m_fileManager.calls.clear();
    m_urlSink.opened.clear();

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = folder ? dir.filePath(QStringLiteral("sub dir")) : dir.filePath(QStringLiteral("a b.docx"));
    if (folder)
        QVERIFY(QDir().mkpath(path));
    else
        touch(path);

    QVERIFY(VMEnv::showInExplorer(path));
    if (fileManager) {
        QTRY_COMPARE(m_fileManager.calls.size(), 1);
        QCOMPARE(m_fileManager.calls.at(0).method, QLatin1String(folder ? "ShowFolders" : "ShowItems"));
        QCOMPARE(m_fileManager.calls.at(0).uris, QStringList{QUrl::fromLocalFile(path).toString()});
    } else {
        // Nobody owns the file-manager name on this bus (or there is no bus at all).
        QTRY_COMPARE(m_urlSink.opened.size(), 1);
        QCOMPARE(m_urlSink.opened.at(0), QUrl::fromLocalFile(folder ? path : dir.path()));
    }
}

void tst_VMEnv::openDocumentWithoutLauncher()
{
    if (QFileInfo::exists(QDir(yrt::dirs::resources()).filePath(QStringLiteral("zyl"))))
        QSKIP("a word-processor launcher is installed; it would really start");
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("merged result.docx"));
    touch(path);
    m_urlSink.opened.clear();

    VMEnv::openDocument(path);
    QCOMPARE(m_urlSink.opened, QList<QUrl>{QUrl::fromLocalFile(path)});
}

QTEST_MAIN(tst_VMEnv)
#include "tst_vmenv.moc"
