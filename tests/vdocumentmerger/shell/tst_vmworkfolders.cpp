#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

#include "shell/vmworkfolders.h"

class tst_VMWorkFolders : public QObject {
    Q_OBJECT

private slots:
    void privateRoot_data();
    void privateRoot();
    void staleTreesRemoved();
    void processTreeIsPrivateAndRemovedAlone();
};

namespace {

mode_t modeOf(const QString &path)
{
    struct stat st = {};
    if (::lstat(QFile::encodeName(path).constData(), &st) != 0)
        return 0;
    return st.st_mode & 0777;
}

} // namespace

void tst_VMWorkFolders::privateRoot_data()
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

void tst_VMWorkFolders::privateRoot()
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

void tst_VMWorkFolders::staleTreesRemoved()
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

void tst_VMWorkFolders::processTreeIsPrivateAndRemovedAlone()
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

QTEST_GUILESS_MAIN(tst_VMWorkFolders)
#include "tst_vmworkfolders.moc"
