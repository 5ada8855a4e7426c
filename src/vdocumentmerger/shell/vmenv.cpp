#include "shell/vmenv.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QUrl>

#include "host/liolite.h"

Q_LOGGING_CATEGORY(lcVMEnv, "vdocumentmerger.env", QtWarningMsg)

namespace {

VMEnv *s_env = nullptr;

void openWithDefaultHandler(const QUrl &url)
{
    if (!QDesktopServices::openUrl(url))
        qCWarning(lcVMEnv) << "no handler opened" << url.toString();
}

// The freedesktop file-manager interface selects the item in its folder; a desktop without
// it (or without a session bus) still gets the folder opened.
void revealWithFileManager(const QFileInfo &info)
{
    const QUrl folderUrl = QUrl::fromLocalFile(info.isDir() ? info.absoluteFilePath()
                                                            : info.absolutePath());
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openWithDefaultHandler(folderUrl);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"),
        info.isDir() ? QStringLiteral("ShowFolders") : QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(info.absoluteFilePath()).toString()} << QString();
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [folderUrl](QDBusPendingCallWatcher *w) {
                         if (w->isError()) {
                             qCDebug(lcVMEnv) << "file manager call failed:" << w->error().message();
                             openWithDefaultHandler(folderUrl);
                         }
                         w->deleteLater();
                     });
}

} // namespace

VMEnv::VMEnv() = default;
VMEnv::~VMEnv() = default;

VMEnv *VMEnv::instance()
{
    if (!s_env)
        s_env = new VMEnv;
    return s_env;
}

void VMEnv::releaseInstance()
{
    delete s_env;
    s_env = nullptr;
}

QString VMEnv::outputName() const { return m_outputName; }
void VMEnv::setOutputName(const QString &name) { m_outputName = name; }
QString VMEnv::outputSuffix() const { return m_outputSuffix; }
void VMEnv::setOutputSuffix(const QString &suffix) { m_outputSuffix = suffix; }
int VMEnv::location() const { return m_location; }
void VMEnv::setLocation(int location) { m_location = location; }
QString VMEnv::customDir() const { return m_customDir; }
void VMEnv::setCustomDir(const QString &dir) { m_customDir = dir; }

QString VMEnv::tempRoot()
{
    return QStringLiteral("%1/%2").arg(QDir::tempPath()).arg(QStringLiteral("vdocumentmerger"));
}

QString VMEnv::workFolderName(int kind)
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

QString VMEnv::workFilePath(const QString &baseName, const QString &suffix, int kind)
{
    return workFilePath(baseName, suffix, kind, QDateTime::currentDateTime());
}

QString VMEnv::workFilePath(const QString &baseName, const QString &suffix, int kind,
                            const QDateTime &now)
{
    const QString folder = QStringLiteral("%1/%2").arg(tempRoot()).arg(workFolderName(kind));
    QDir dir(folder);
    if (!dir.mkpath(QStringLiteral(".")))
        qCDebug(lcVMEnv) << "cannot create" << folder;

    const QString stem = QStringLiteral("%1_%2").arg(baseName).arg(now.toString(QStringLiteral("yyyyMMddHHmmss")));
    QString name = QStringLiteral("%1.%2").arg(stem).arg(suffix);
    // exists() also sees folders and dangling links: any entry of that name is taken.
    for (int n = 1; dir.exists(name) || QFileInfo(dir.filePath(name)).isSymLink(); ++n)
        name = QStringLiteral("%1(%2).%3").arg(stem).arg(n).arg(suffix);
    return QStringLiteral("%1/%2").arg(folder).arg(name);
}

QString VMEnv::workCopyPath(const QString &filePath, int kind)
{
    const QFileInfo info(filePath);
    return QDir::toNativeSeparators(workFilePath(info.completeBaseName(), info.suffix(), kind));
}

void VMEnv::removeDirRecursively(const QString &path)
{
    QDir dir(path);
    if (path.isEmpty() || !dir.exists())
        return;
    // Hidden and system entries too: the office leaves dot-named lock files beside its
    // working copies, and they must not keep the tree alive.
    const QFileInfoList entries = dir.entryInfoList(
        QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QFileInfo &entry : entries) {
        // A link to a folder is removed as a link, never followed out of the tree.
        if (entry.isDir() && !entry.isSymLink())
            removeDirRecursively(entry.absoluteFilePath());
        else
            dir.remove(entry.fileName());
    }
    dir.rmdir(dir.absolutePath());
}

bool VMEnv::showInExplorer(const QString &path)
{
    if (path.isEmpty() || !QFile::exists(path))
        return false;
    revealWithFileManager(QFileInfo(path));
    return true;
}

void VMEnv::openDocument(const QString &path)
{
    const QString document = QFileInfo(path).absoluteFilePath();
    const QFileInfo launcher(QDir(yrt::dirs::resources()).filePath(QStringLiteral("zyl")));
    if (launcher.isFile() && launcher.isExecutable()
        && QProcess::startDetached(launcher.absoluteFilePath(), {QDir::toNativeSeparators(document)}))
        return;
    openWithDefaultHandler(QUrl::fromLocalFile(document));
}
