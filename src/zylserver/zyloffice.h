// One headless office process with a private profile, reached over a named pipe.
//
// Application objects share the running office; it ends when the last object that uses it is
// released. Calls are serialised, and a watchdog kills the office when one call takes longer
// than the call timeout (VZYL_CALL_TIMEOUT seconds, 120 by default), or when the office uses no
// processor time for the hang timeout while a call waits on it (VZYL_HANG_TIMEOUT, 20 s). Once the
// application quits, a call gets a few seconds more and no new office starts. An office that died
// stays dead: its calls fail, and the next acquire() starts a fresh one.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include <QString>

#include <sys/types.h>

#include <com/sun/star/frame/XDesktop2.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include <vcomrt/com.h>

class ZylOffice {
public:
    // The shared office, started when none runs. Returns null and sets error when it cannot start.
    static std::shared_ptr<ZylOffice> acquire(QString *error);
    ~ZylOffice();

    ZylOffice(const ZylOffice &) = delete;
    ZylOffice &operator=(const ZylOffice &) = delete;

    // Runs work under the office's call lock and watchdog. Office exceptions become negative
    // statuses; a dead office fails at once with RPC_E_DISCONNECTED.
    HRESULT call(const char *what, const std::function<HRESULT()> &work);

    bool isAlive() const;
    // Marks the office dead and makes sure its process has ended.
    void abandon();
    pid_t pid() const { return m_pid; }
    css::uno::Reference<css::uno::XComponentContext> remoteContext() const { return m_remoteContext; }
    css::uno::Reference<css::frame::XDesktop2> desktop() const { return m_desktop; }

    // A folder private to this process for the server's own files; removed when the process ends.
    static QString privateFolder();

    static std::chrono::milliseconds callTimeout();
    static std::chrono::milliseconds hangTimeout();

private:
    ZylOffice();
    bool start(QString *error);
    bool spawn(QString *error);
    int waitForExit(std::chrono::milliseconds timeout);
    void markDead();
    void watchdogLoop();
    void shutdown();

    mutable std::mutex m_stateMutex;
    std::recursive_mutex m_callMutex;
    std::condition_variable m_watchdogWake;
    std::thread m_watchdog;
    bool m_stopWatchdog = false;
    bool m_callRunning = false;
    std::chrono::steady_clock::time_point m_deadline;

    pid_t m_pid = -1;
    bool m_reaped = false;
    int m_exitStatus = -1;
    bool m_dead = false;
    QString m_pipeName;

    css::uno::Reference<css::uno::XComponentContext> m_localContext;
    css::uno::Reference<css::uno::XComponentContext> m_remoteContext;
    css::uno::Reference<css::frame::XDesktop2> m_desktop;
};
