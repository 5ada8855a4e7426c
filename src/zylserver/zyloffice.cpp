#include "zyloffice.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <com/sun/star/bridge/UnoUrlResolver.hpp>
#include <com/sun/star/connection/NoConnectException.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <cppuhelper/bootstrap.hxx>
#include <rtl/bootstrap.hxx>

#include "zyllog.h"
#include "zylofficeguardian.h"
#include "zyluno.h"

using namespace css;

namespace {

// The office asks for one restart after it created a fresh profile.
const int kRestartExitCode = 81;

std::mutex &processMutex()
{
    static std::mutex m;
    return m;
}

std::condition_variable &processGone()
{
    static std::condition_variable cv;
    return cv;
}

int &runningProcesses()
{
    static int count = 0;
    return count;
}

const char *const kProfileSettings =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\" "
    "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Misc\"><prop oor:name=\"UseLocking\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Misc\"><prop oor:name=\"UseDocumentOOoLockFile\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Misc\"><prop oor:name=\"UseDocumentSystemFileLocking\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Misc\"><prop oor:name=\"FirstRun\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Save/Document\"><prop oor:name=\"CreateBackup\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    // A thumbnail is a rendering of the first page, with every OpenDocument save.
    "<item oor:path=\"/org.openoffice.Office.Common/Save/Document\"><prop oor:name=\"GenerateThumbnail\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Recovery/AutoSave\"><prop oor:name=\"Enabled\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Recovery/RecoveryInfo\"><prop oor:name=\"Enabled\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Security/Scripting\"><prop oor:name=\"MacroSecurityLevel\" oor:op=\"fuse\"><value>3</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Security/Scripting\"><prop oor:name=\"DisableMacrosExecution\" oor:op=\"fuse\"><value>true</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Common/Misc\"><prop oor:name=\"ShowTipOfTheDay\" oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "</oor:items>\n";

// A profile the office has set up once, kept per user: in a fresh one the office sets itself up
// and asks for a restart, which costs every process a second start.
QString profileTemplate()
{
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return cache.isEmpty() ? QString() : cache + QStringLiteral("/vzyl/office-profile");
}

// A real folder (not a link) of this user.
bool ownFolder(const QString &path)
{
    struct stat st;
    return lstat(QFile::encodeName(path).constData(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == getuid();
}

void copyFiles(const QString &from, const QString &to)
{
    QDirIterator it(from, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString target = to + file.mid(from.size());
        QDir().mkpath(QFileInfo(target).path());
        QFile::copy(file, target);
    }
}

// Keeps the profile of an office that ended cleanly as the template, unless there is one.
void keepProfileTemplate(const std::string &profile)
{
    const QString stored = profileTemplate();
    struct stat st;
    if (stored.isEmpty() || lstat(QFile::encodeName(stored).constData(), &st) == 0)
        return;
    const QString parent = QFileInfo(stored).path();
    if (!QDir().mkpath(parent) || !ownFolder(parent))
        return;
    QFile::setPermissions(parent, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QByteArray pattern = QFile::encodeName(parent + QStringLiteral("/.profile-XXXXXX"));
    if (!mkdtemp(pattern.data()))
        return;
    const QString fresh = QFile::decodeName(pattern);
    copyFiles(QString::fromStdString(profile) + QStringLiteral("/user"), fresh + QStringLiteral("/user"));
    // Another process may have kept one meanwhile.
    if (rename(pattern.constData(), QFile::encodeName(stored).constData()) != 0)
        QDir(fresh).removeRecursively();
}

// One private profile per process; the guardian removes it when the process ends.
bool profileDir(std::string *dir, QString *error)
{
    static std::mutex mutex;
    static std::string path;
    std::lock_guard<std::mutex> lock(mutex);
    if (!path.empty()) {
        *dir = path;
        return true;
    }
    QByteArray pattern = QFile::encodeName(QDir::tempPath() + QStringLiteral("/vzyl-profile-XXXXXX"));
    if (!mkdtemp(pattern.data())) {
        *error = QStringLiteral("cannot create the office profile folder: %1").arg(QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    const QString root = QFile::decodeName(pattern);
    QDir().mkpath(root + QStringLiteral("/user"));
    const QString stored = profileTemplate();
    if (!stored.isEmpty() && ownFolder(stored) && ownFolder(stored + QStringLiteral("/user")))
        copyFiles(stored + QStringLiteral("/user"), root + QStringLiteral("/user"));
    // Our settings replace whatever the template says.
    QFile settings(root + QStringLiteral("/user/registrymodifications.xcu"));
    if (!settings.open(QIODevice::WriteOnly | QIODevice::Truncate) || settings.write(kProfileSettings) < 0) {
        *error = QStringLiteral("cannot write the office profile settings");
        QDir(root).removeRecursively();
        return false;
    }
    settings.close();
    if (!ZylOfficeGuardian::instance().start(pattern.toStdString())) {
        *error = QStringLiteral("cannot start the office guardian");
        QDir(root).removeRecursively();
        return false;
    }
    path = pattern.toStdString();
    *dir = path;
    return true;
}

// How often a running call's office is looked at.
const std::chrono::milliseconds kCpuSampleInterval(1000);

// Once the application quits, a call still waiting on the office after this long is given up:
// the user has left, and the exit must not wait for a frozen or slow office.
const std::chrono::milliseconds kQuitGrace(3000);

// Steady-clock milliseconds at which the application began to quit; 0 while it runs.
std::atomic<long long> s_quitAt{0};

long long steadyMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void watchForQuit()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (QCoreApplication *app = QCoreApplication::instance()) {
            // Set as the main event loop ends; every watchdog reads it.
            QObject::connect(app, &QCoreApplication::aboutToQuit, [] {
                long long none = 0;
                s_quitAt.compare_exchange_strong(none, steadyMs());
            });
        }
    });
}

// User plus system time of the process in clock ticks, from /proc/<pid>/stat; -1 when unknown.
long long cpuTicks(pid_t pid)
{
    if (pid <= 1)
        return -1;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = stat.readAll();
    // The name in parentheses may hold spaces: the fields are counted after its end.
    const int nameEnd = line.lastIndexOf(')');
    if (nameEnd < 0)
        return -1;
    const QList<QByteArray> fields = line.mid(nameEnd + 2).split(' ');
    // Fields 14 and 15 of the line, utime and stime, counted from the state (field 3).
    if (fields.size() < 13)
        return -1;
    bool userOk = false;
    bool systemOk = false;
    const long long user = fields.at(11).toLongLong(&userOk);
    const long long system = fields.at(12).toLongLong(&systemOk);
    return userOk && systemOk ? user + system : -1;
}

void closeInheritedFiles()
{
    const int maxFd = int(sysconf(_SC_OPEN_MAX));
    for (int fd = 3; fd < (maxFd > 0 ? maxFd : 1024) && fd < 65536; ++fd)
        close(fd);
}

} // namespace

QString ZylOffice::privateFolder()
{
    std::string dir;
    QString error;
    if (!profileDir(&dir, &error)) {
        qCWarning(lcZylServer) << error;
        return QString();
    }
    return QString::fromStdString(dir);
}

std::chrono::milliseconds ZylOffice::callTimeout()
{
    const QByteArray value = qgetenv("VZYL_CALL_TIMEOUT");
    bool ok = false;
    const double seconds = value.toDouble(&ok);
    if (ok && seconds > 0)
        return std::chrono::milliseconds(qint64(seconds * 1000));
    return std::chrono::seconds(120);
}

std::chrono::milliseconds ZylOffice::hangTimeout()
{
    const QByteArray value = qgetenv("VZYL_HANG_TIMEOUT");
    bool ok = false;
    const double seconds = value.toDouble(&ok);
    if (ok && seconds > 0)
        return std::chrono::milliseconds(qint64(seconds * 1000));
    return std::chrono::seconds(20);
}

std::shared_ptr<ZylOffice> ZylOffice::acquire(QString *error)
{
    static std::mutex mutex;
    static std::weak_ptr<ZylOffice> current;
    std::lock_guard<std::mutex> lock(mutex);
    watchForQuit();
    if (s_quitAt.load() != 0) {
        *error = QStringLiteral("the application is quitting; no office is started");
        return nullptr;
    }
    if (std::shared_ptr<ZylOffice> office = current.lock()) {
        if (office->isAlive())
            return office;
        // A crashed office may still be dying on the shared profile: make sure it is gone.
        office->abandon();
    }
    {
        // One profile serves one process at a time: wait until an office that is ending has gone.
        std::unique_lock<std::mutex> plock(processMutex());
        if (!processGone().wait_for(plock, std::chrono::seconds(30), [] { return runningProcesses() == 0; }))
            qCWarning(lcZylServer) << "an earlier office is still running; starting anyway";
    }
    std::shared_ptr<ZylOffice> office(new ZylOffice);
    if (!office->start(error))
        return nullptr;
    current = office;
    return office;
}

ZylOffice::ZylOffice()
{
    m_watchdog = std::thread([this] { watchdogLoop(); });
}

ZylOffice::~ZylOffice()
{
    shutdown();
    {
        std::lock_guard<std::mutex> lock(m_stateMutex);
        m_stopWatchdog = true;
    }
    m_watchdogWake.notify_all();
    m_watchdog.join();
}

bool ZylOffice::spawn(QString *error)
{
    std::string profile;
    if (!profileDir(&profile, error))
        return false;
    static std::atomic<int> serial{0};
    m_pipeName = QStringLiteral("vzyl_%1_%2_%3").arg(getpid()).arg(++serial).arg(qint64(std::chrono::steady_clock::now().time_since_epoch().count()) % 1000000);
    const std::string binary = std::string(ZYL_OFFICE_PROGRAM_DIR) + "/soffice.bin";
    const std::string profileUrl = QUrl::fromLocalFile(QString::fromStdString(profile)).toEncoded().toStdString();
    std::vector<std::string> args = {
        binary, "--headless", "--invisible", "--nologo", "--norestore", "--nodefault", "--nolockcheck",
        "--nofirststartwizard",
        "-env:UserInstallation=" + profileUrl,
        "--accept=pipe,name=" + m_pipeName.toStdString() + ";urp;StarOffice.ComponentContext"};
    // Office diagnostics go to a file only when asked for.
    const QByteArray logPath = qgetenv("VZYL_OFFICE_LOG");
    std::vector<char *> argv;
    for (std::string &a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);

    std::lock_guard<std::mutex> plock(processMutex());
    const pid_t pid = fork();
    if (pid < 0) {
        *error = QStringLiteral("cannot start the office: %1").arg(QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    if (pid == 0) {
        const int null = open("/dev/null", O_RDWR);
        const int log = logPath.isEmpty() ? -1 : open(logPath.constData(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        if (null >= 0) {
            dup2(null, STDIN_FILENO);
            dup2(log >= 0 ? log : null, STDOUT_FILENO);
            dup2(log >= 0 ? log : null, STDERR_FILENO);
        }
        closeInheritedFiles();
        signal(SIGPIPE, SIG_DFL);
        execv(argv[0], argv.data());
        _exit(127);
    }
    {
        std::lock_guard<std::mutex> lock(m_stateMutex);
        m_pid = pid;
        m_reaped = false;
        m_exitStatus = -1;
    }
    ++runningProcesses();
    ZylOfficeGuardian::instance().watch(pid);
    return true;
}

int ZylOffice::waitForExit(std::chrono::milliseconds timeout)
{
    const auto until = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(m_stateMutex);
            if (m_pid <= 1)
                return -1;
            if (!m_reaped) {
                int status = 0;
                const pid_t r = waitpid(m_pid, &status, WNOHANG);
                if (r == m_pid || (r < 0 && errno == ECHILD)) {
                    m_reaped = true;
                    m_exitStatus = (r == m_pid && WIFEXITED(status)) ? WEXITSTATUS(status) : -1;
                    ZylOfficeGuardian::instance().release(m_pid);
                    {
                        std::lock_guard<std::mutex> plock(processMutex());
                        --runningProcesses();
                    }
                    processGone().notify_all();
                }
            }
            if (m_reaped)
                return m_exitStatus;
        }
        if (std::chrono::steady_clock::now() >= until)
            return -2;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

bool ZylOffice::start(QString *error)
{
    // Writing to the pipe of an office that just died must not end this process.
    struct sigaction current;
    if (sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        signal(SIGPIPE, SIG_IGN);
    if (!qEnvironmentVariableIsSet("URE_BOOTSTRAP"))
        qputenv("URE_BOOTSTRAP", QByteArray("vnd.sun.star.pathname:") + ZYL_OFFICE_PROGRAM_DIR + "/fundamentalrc");
    try {
        m_localContext = cppu::defaultBootstrap_InitialComponentContext();
    } catch (const uno::Exception &e) {
        *error = QStringLiteral("cannot create the local UNO context: %1").arg(toQString(e.Message));
        return false;
    }
    if (!spawn(error))
        return false;

    uno::Reference<bridge::XUnoUrlResolver> resolver = bridge::UnoUrlResolver::create(m_localContext);
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    bool restarted = false;
    while (std::chrono::steady_clock::now() < until) {
        const int exit = waitForExit(std::chrono::milliseconds(0));
        if (exit >= -1 && exit != -2) {
            if (exit == kRestartExitCode && !restarted) {
                restarted = true;
                if (!spawn(error))
                    return false;
                continue;
            }
            *error = QStringLiteral("the office ended during start-up with status %1").arg(exit);
            return false;
        }
        try {
            // A restart listens on a pipe of its own.
            const rtl::OUString url = rtl::OUString::fromUtf8(
                ("uno:pipe,name=" + m_pipeName.toStdString() + ";urp;StarOffice.ComponentContext").c_str());
            uno::Reference<uno::XInterface> remote = resolver->resolve(url);
            m_remoteContext.set(remote, uno::UNO_QUERY_THROW);
            m_desktop = frame::Desktop::create(m_remoteContext);
            qCInfo(lcZylServer) << "office" << m_pid << "ready on pipe" << m_pipeName;
            return true;
        } catch (const connection::NoConnectException &e) {
            qCDebug(lcZylServer) << "office not listening yet:" << toQString(e.Message);
        } catch (const uno::Exception &e) {
            qCInfo(lcZylServer) << "office not ready yet:" << toQString(e.Message);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    *error = QStringLiteral("the office did not answer within 60 s");
    return false;
}

bool ZylOffice::isAlive() const
{
    const int exit = const_cast<ZylOffice *>(this)->waitForExit(std::chrono::milliseconds(0));
    if (exit != -2) {
        const_cast<ZylOffice *>(this)->markDead();
        return false;
    }
    return !m_dead && m_desktop.is();
}

void ZylOffice::abandon()
{
    markDead();
    if (waitForExit(std::chrono::seconds(5)) == -2) {
        {
            std::lock_guard<std::mutex> lock(m_stateMutex);
            if (m_pid > 1 && !m_reaped)
                kill(m_pid, SIGKILL);
        }
        waitForExit(std::chrono::seconds(10));
    }
}

void ZylOffice::markDead()
{
    std::lock_guard<std::mutex> lock(m_stateMutex);
    m_dead = true;
}

HRESULT ZylOffice::call(const char *what, const std::function<HRESULT()> &work)
{
    std::lock_guard<std::recursive_mutex> lock(m_callMutex);
    if (!isAlive())
        return RPC_E_DISCONNECTED;
    bool outermost = false;
    {
        std::lock_guard<std::mutex> slock(m_stateMutex);
        if (!m_callRunning) {
            outermost = true;
            m_callRunning = true;
            m_deadline = std::chrono::steady_clock::now() + callTimeout();
        }
    }
    if (outermost)
        m_watchdogWake.notify_all();

    HRESULT hr = E_FAIL;
    const auto started = std::chrono::steady_clock::now();
    try {
        hr = work();
    } catch (const lang::DisposedException &e) {
        qCWarning(lcZylServer) << what << ": the office is gone:" << toQString(e.Message);
        markDead();
        hr = RPC_E_DISCONNECTED;
    } catch (const uno::RuntimeException &e) {
        qCWarning(lcZylServer) << what << "failed:" << toQString(e.Message);
        hr = DISP_E_EXCEPTION;
    } catch (const uno::Exception &e) {
        qCWarning(lcZylServer) << what << "failed:" << toQString(e.Message);
        hr = DISP_E_EXCEPTION;
    }

    if (outermost)
        qCDebug(lcZylServer, "%s: %lld ms", what,
                qint64(std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - started).count()));
    bool timedOut = false;
    if (outermost) {
        std::lock_guard<std::mutex> slock(m_stateMutex);
        timedOut = !m_callRunning;
        m_callRunning = false;
    }
    if (timedOut) {
        qCWarning(lcZylServer) << what << "did not finish in time; the office was ended";
        markDead();
        return RPC_E_TIMEOUT;
    }
    if (FAILED(hr) && hr != RPC_E_DISCONNECTED && !isAlive())
        hr = RPC_E_DISCONNECTED;
    return hr;
}

void ZylOffice::watchdogLoop()
{
    const std::chrono::milliseconds frozenLimit = hangTimeout();
    std::unique_lock<std::mutex> lock(m_stateMutex);
    std::chrono::steady_clock::time_point watched;
    long long lastTicks = -1;
    std::chrono::steady_clock::time_point lastProgress;
    while (!m_stopWatchdog) {
        if (!m_callRunning) {
            m_watchdogWake.wait(lock);
            continue;
        }
        const auto deadline = m_deadline;
        if (deadline != watched) {
            watched = deadline;
            lastTicks = -1;
            lastProgress = std::chrono::steady_clock::now();
        }
        m_watchdogWake.wait_until(lock, std::min(deadline, std::chrono::steady_clock::now() + kCpuSampleInterval));
        if (m_stopWatchdog || !m_callRunning || m_deadline != deadline)
            continue;
        const auto now = std::chrono::steady_clock::now();
        // A busy office, however slow, uses processor time; an office that uses none while a
        // call waits on it is frozen. Without a reading the office counts as busy.
        const long long ticks = cpuTicks(m_pid);
        if (ticks < 0 || ticks != lastTicks) {
            lastTicks = ticks;
            lastProgress = now;
        }
        const bool frozen = now - lastProgress >= frozenLimit;
        const long long quitAt = s_quitAt.load();
        const bool leftBehind = quitAt != 0 && steadyMs() - quitAt >= kQuitGrace.count();
        if (now < deadline && !frozen && !leftBehind)
            continue;
        m_callRunning = false; // tells the caller that its call was cut short
        m_dead = true;
        if (m_pid > 1 && !m_reaped) {
            qCWarning(lcZylServer) << "office" << m_pid
                                   << (leftBehind ? "still works while the application quits"
                                       : frozen ? "has used no processor time for a while" : "does not answer")
                                   << "; killing it";
            kill(m_pid, SIGKILL);
        }
    }
}

void ZylOffice::shutdown()
{
    {
        std::lock_guard<std::recursive_mutex> lock(m_callMutex);
        if (m_desktop.is()) {
            // The bridge goes down with the office, so a failure here is expected.
            call("terminate", [this] {
                m_desktop->terminate();
                return S_OK;
            });
        }
        m_desktop.clear();
        m_remoteContext.clear();
    }
    if (m_pid > 1) {
        if (waitForExit(std::chrono::seconds(10)) == -2) {
            std::lock_guard<std::mutex> lock(m_stateMutex);
            if (!m_reaped)
                kill(m_pid, SIGKILL);
        }
        if (waitForExit(std::chrono::seconds(10)) == 0) {
            std::string profile;
            QString error;
            if (profileDir(&profile, &error))
                keepProfileTemplate(profile);
        }
    }
    uno::Reference<lang::XComponent> local(m_localContext, uno::UNO_QUERY);
    if (local.is()) {
        try {
            local->dispose();
        } catch (const uno::Exception &) {
        }
    }
    m_localContext.clear();
}
