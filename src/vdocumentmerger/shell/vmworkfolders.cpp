#include "shell/vmworkfolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <cerrno>
#include <cstring>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcWorkFolders, "vdocumentmerger.workfolders", QtWarningMsg)

namespace {

struct Root {
    QString path;
    bool fallback = false;
};

// Decided once per process: a fallback root must not be replaced by another one later.
const Root &processWideRoot()
{
    static const Root root = [] {
        Root r;
        const QString temp = QDir::tempPath();
        r.path = VMWorkFolders::privateRoot(temp, ::getuid());
        r.fallback = !r.path.isEmpty()
            && QFileInfo(r.path).fileName() != QStringLiteral("vdocumentmerger-%1").arg(::getuid());
        if (r.path.isEmpty())
            qCWarning(lcWorkFolders) << "no private working folder can be made under" << temp;
        else if (!r.fallback)
            VMWorkFolders::removeStaleTrees(r.path);
        return r;
    }();
    return root;
}

// True when path is a folder (not a link) owned by uid; narrows its mode to 0700 if it is ours.
bool isOwnedPrivateFolder(const QString &path, uint uid)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat st = {};
    bool ok = ::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == uid;
    if (ok && (st.st_mode & 077) != 0)
        ok = ::fchmod(fd, 0700) == 0;
    ::close(fd);
    return ok;
}

// An entry that is already there is used only when it is a folder of ours, not a link.
bool makePrivateFolder(const QString &path)
{
    if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && errno != EEXIST) {
        qCDebug(lcWorkFolders) << "cannot create" << path << ::strerror(errno);
        return false;
    }
    return isOwnedPrivateFolder(path, ::getuid());
}

bool isNumber(const QString &name)
{
    if (name.isEmpty())
        return false;
    for (const QChar c : name) {
        if (!c.isDigit())
            return false;
    }
    return true;
}

} // namespace

QString VMWorkFolders::privateRoot(const QString &tempPath, uint uid)
{
    const QString usual = QStringLiteral("%1/vdocumentmerger-%2").arg(tempPath).arg(uid);
    if (::mkdir(QFile::encodeName(usual).constData(), 0700) != 0 && errno != EEXIST)
        qCDebug(lcWorkFolders) << "cannot create" << usual << ::strerror(errno);
    if (isOwnedPrivateFolder(usual, uid))
        return usual;

    qCWarning(lcWorkFolders) << usual << "is not a private folder of this user; using a fresh one";
    QByteArray pattern = QFile::encodeName(usual + QStringLiteral("-XXXXXX"));
    if (!::mkdtemp(pattern.data()))
        return QString();
    return QFile::decodeName(pattern);
}

void VMWorkFolders::removeStaleTrees(const QString &root)
{
    const QDir dir(root);
    const QStringList entries = dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    for (const QString &name : entries) {
        if (!isNumber(name))
            continue;
        bool ok = false;
        const qint64 pid = name.toLongLong(&ok);
        // This process has not made its tree yet: one with its id is an earlier process's.
        const bool gone = ok && pid > 0
            && (pid == ::getpid() || (::kill(pid_t(pid), 0) != 0 && errno == ESRCH));
        if (gone)
            removeRecursively(dir.filePath(name));
    }
}

QString VMWorkFolders::userRoot()
{
    return processWideRoot().path;
}

QString VMWorkFolders::processRoot()
{
    const QString root = userRoot();
    if (root.isEmpty())
        return QString();
    return QStringLiteral("%1/%2").arg(root).arg(QCoreApplication::applicationPid());
}

QString VMWorkFolders::folderName(int kind)
{
    switch (kind) {
    case 0:
        return QStringLiteral("handycopy");
    case 1:
        return QStringLiteral("tempsplit");
    case 2:
        return QStringLiteral("mergedest");
    default:
        return QStringLiteral("misc");
    }
}

QString VMWorkFolders::filePath(const QString &baseName, const QString &suffix, int kind,
                                const QDateTime &now)
{
    const QString tree = processRoot();
    if (tree.isEmpty())
        return QString();
    const QString folder = QStringLiteral("%1/%2").arg(tree).arg(folderName(kind));
    if (!makePrivateFolder(userRoot()) || !makePrivateFolder(tree) || !makePrivateFolder(folder))
        return QString();

    const QDir dir(folder);
    const QString stem = QStringLiteral("%1_%2").arg(baseName).arg(now.toString(QStringLiteral("yyyyMMddHHmmss")));
    QString name = QStringLiteral("%1.%2").arg(stem).arg(suffix);
    // exists() also sees folders; a dangling link is taken too.
    for (int n = 1; dir.exists(name) || QFileInfo(dir.filePath(name)).isSymLink(); ++n)
        name = QStringLiteral("%1(%2).%3").arg(stem).arg(n).arg(suffix);
    return QStringLiteral("%1/%2").arg(folder).arg(name);
}

QString VMWorkFolders::copyPath(const QString &filePath, int kind)
{
    const QFileInfo info(filePath);
    return QDir::toNativeSeparators(VMWorkFolders::filePath(info.completeBaseName(), info.suffix(),
                                                            kind, QDateTime::currentDateTime()));
}

void VMWorkFolders::removeRecursively(const QString &path)
{
    const QFileInfo top(path);
    if (path.isEmpty() || !top.isDir() || top.isSymLink())
        return;
    QDir dir(path);
    // Hidden and system entries too: the office leaves dot-named lock files beside its
    // working copies, and they must not keep the tree alive.
    const QFileInfoList entries = dir.entryInfoList(
        QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            removeRecursively(entry.absoluteFilePath());
        else
            dir.remove(entry.fileName());
    }
    dir.rmdir(dir.absolutePath());
}

void VMWorkFolders::removeProcessRoot()
{
    const Root &root = processWideRoot();
    removeRecursively(processRoot());
    if (root.fallback)
        QDir().rmdir(root.path);
}
