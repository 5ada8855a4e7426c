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
#include "shell/vmworkfolders.h"

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
    return VMWorkFolders::processRoot();
}

QString VMEnv::workFolderName(int kind)
{
    return VMWorkFolders::folderName(kind);
}

QString VMEnv::workFilePath(const QString &baseName, const QString &suffix, int kind)
{
    return VMWorkFolders::filePath(baseName, suffix, kind, QDateTime::currentDateTime());
}

QString VMEnv::workFilePath(const QString &baseName, const QString &suffix, int kind,
                            const QDateTime &now)
{
    return VMWorkFolders::filePath(baseName, suffix, kind, now);
}

QString VMEnv::workCopyPath(const QString &filePath, int kind)
{
    return VMWorkFolders::copyPath(filePath, kind);
}

void VMEnv::removeDirRecursively(const QString &path)
{
    VMWorkFolders::removeRecursively(path);
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
