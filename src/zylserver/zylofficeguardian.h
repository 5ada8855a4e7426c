// A small process that outlives nothing: it holds one end of a socket whose other end lives in
// this process, and when that end closes (this process ended, however it ended) it ends every
// office process it was told about and removes the private profile folder.
#pragma once

#include <mutex>
#include <string>

#include <sys/types.h>

class ZylOfficeGuardian {
public:
    // The process-wide guardian, started on first use for the given profile folder.
    static ZylOfficeGuardian &instance();

    // Must be called before the first watch(); returns false when the guardian cannot start.
    bool start(const std::string &profileDir);
    void watch(pid_t pid);
    void release(pid_t pid);

private:
    ZylOfficeGuardian() = default;
    bool send(const std::string &line);

    std::mutex m_mutex;
    int m_socket = -1;
    pid_t m_pid = -1;
};
