#include "zylofficeguardian.h"

#include <cerrno>
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zyllog.h"

namespace {

// Reads "watch <pid>" and "release <pid>" lines until end of input, then ends the watched
// processes (politely first) and removes the profile folder given as $1.
const char *const kScript =
    "pids=' '\n"
    "while read -r cmd pid; do\n"
    "  case \"$cmd\" in\n"
    "    watch) pids=\"$pids$pid \" ;;\n"
    "    release) pids=$(printf '%s' \"$pids\" | sed \"s/ $pid / /\") ;;\n"
    "  esac\n"
    "done\n"
    "for p in $pids; do\n"
    "  [ \"$p\" -gt 1 ] 2>/dev/null && kill -TERM \"$p\" 2>/dev/null\n"
    "done\n"
    "for p in $pids; do\n"
    "  [ \"$p\" -gt 1 ] 2>/dev/null || continue\n"
    "  i=0\n"
    "  while kill -0 \"$p\" 2>/dev/null && [ $i -lt 50 ]; do sleep 0.1; i=$((i+1)); done\n"
    "  kill -KILL \"$p\" 2>/dev/null\n"
    "done\n"
    "[ -n \"$1\" ] && rm -rf -- \"$1\"\n";

} // namespace

ZylOfficeGuardian &ZylOfficeGuardian::instance()
{
    static ZylOfficeGuardian guardian;
    return guardian;
}

bool ZylOfficeGuardian::start(const std::string &profileDir)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_socket >= 0)
        return true;
    int fds[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0) {
        qCWarning(lcZylServer) << "cannot create the guardian socket:" << strerror(errno);
        return false;
    }
    const pid_t pid = fork();
    if (pid < 0) {
        close(fds[0]);
        close(fds[1]);
        qCWarning(lcZylServer) << "cannot start the guardian:" << strerror(errno);
        return false;
    }
    if (pid == 0) {
        // Only async-signal-safe calls from here to exec.
        setsid();
        dup2(fds[1], STDIN_FILENO);
        const int null = open("/dev/null", O_WRONLY);
        if (null >= 0) {
            dup2(null, STDOUT_FILENO);
            dup2(null, STDERR_FILENO);
        }
        signal(SIGPIPE, SIG_DFL);
        execl("/bin/sh", "sh", "-c", kScript, "vzyl-guardian", profileDir.c_str(), static_cast<char *>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    m_socket = fds[0];
    m_pid = pid;
    return true;
}

void ZylOfficeGuardian::watch(pid_t pid)
{
    if (pid > 1)
        send("watch " + std::to_string(pid) + "\n");
}

void ZylOfficeGuardian::release(pid_t pid)
{
    if (pid > 1)
        send("release " + std::to_string(pid) + "\n");
}

bool ZylOfficeGuardian::send(const std::string &line)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_socket < 0)
        return false;
    size_t done = 0;
    while (done < line.size()) {
        const ssize_t n = ::send(m_socket, line.data() + done, line.size() - done, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            qCWarning(lcZylServer) << "the office guardian is gone";
            return false;
        }
        done += size_t(n);
    }
    return true;
}
