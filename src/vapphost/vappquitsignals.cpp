#include "vappquitsignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "vapplogging.h"

namespace {

// Written by the signal handler, which may only call async-signal-safe functions.
int s_pipe[2] = {-1, -1};

void onSignal(int signalNumber)
{
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    if (s_pipe[0] >= 0) {
        const ssize_t ignored = ::write(s_pipe[0], &byte, 1);
        (void)ignored;
    }
}

const int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

} // namespace

VAppQuitSignals::VAppQuitSignals(QObject *parent)
    : QObject(parent)
{
    if (s_pipe[0] >= 0)
        return;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, s_pipe) != 0) {
        qCWarning(lcVAppHost) << "cannot watch for quit signals";
        s_pipe[0] = s_pipe[1] = -1;
        return;
    }
    m_notifier = new QSocketNotifier(s_pipe[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &VAppQuitSignals::onReadable);

    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signalNumber : kSignals)
        ::sigaction(signalNumber, &action, nullptr);
}

VAppQuitSignals::~VAppQuitSignals()
{
    if (!m_notifier)
        return;
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    for (int signalNumber : kSignals)
        ::sigaction(signalNumber, &action, nullptr);
    delete m_notifier;
    m_notifier = nullptr;
    ::close(s_pipe[0]);
    ::close(s_pipe[1]);
    s_pipe[0] = s_pipe[1] = -1;
}

void VAppQuitSignals::onReadable()
{
    unsigned char byte = 0;
    while (::read(s_pipe[1], &byte, 1) == 1) {
        qCInfo(lcVAppHost) << "quit requested by signal" << int(byte);
        emit quitRequested(int(byte));
    }
}
