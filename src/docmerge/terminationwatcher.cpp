#include "terminationwatcher.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Written by the handler, read by the notifier: the only things a handler may safely touch.
int s_pipe[2] = {-1, -1};

extern "C" void onTerminationSignal(int signalNumber)
{
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    const ssize_t written = ::write(s_pipe[1], &byte, 1);
    (void)written;
}

} // namespace

TerminationWatcher::TerminationWatcher(QObject *parent)
    : QObject(parent)
{
    if (s_pipe[0] >= 0 || ::pipe(s_pipe) != 0)
        return;
    for (int fd : s_pipe) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    m_notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationWatcher::onReadable);

    struct sigaction action = {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

TerminationWatcher::~TerminationWatcher()
{
    if (!m_notifier)
        return;
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGTERM, SIG_DFL);
    delete m_notifier;
    ::close(s_pipe[0]);
    ::close(s_pipe[1]);
    s_pipe[0] = s_pipe[1] = -1;
}

bool TerminationWatcher::isActive() const
{
    return m_notifier != nullptr;
}

void TerminationWatcher::onReadable()
{
    unsigned char byte = 0;
    while (::read(s_pipe[0], &byte, 1) == 1)
        emit terminationRequested(int(byte));
}
