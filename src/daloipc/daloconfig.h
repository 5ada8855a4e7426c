#pragma once

#include <QString>

#include "daloipc_export.h"

// Where the drive service listens, where its program and drive live, and how long a request
// may take. Each value comes from what the process set here, else from the environment
// (DALO_DRIVE_SOCKET, DALO_DRIVE_EXE, DALO_DRIVE_ROOT, DALO_IPC_TIMEOUT_MS,
// DALO_DRIVE_IDLE_MS), else a default.
class DALOIPC_EXPORT DaloConfig {
public:
    // Default: "dalodrive.sock" in XDG_RUNTIME_DIR, else in a folder of the temporary folder
    // that only the user can open.
    static QString socketName();
    static void setSocketName(const QString &name);
    // "<baseName>.sock" in the folder of the default socket.
    static QString socketPath(const QString &baseName);
    // Default: "dalodrive" beside the running program.
    static QString serviceExecutable();
    // Default: "dalodrive" in the user's data folder.
    static QString driveRoot();
    static void setDriveRoot(const QString &dir);
    // How long a request may wait for its reply, starting the service included.
    static int replyTimeoutMs();
    // How long a service started on demand stays without requests before it quits.
    static int onDemandIdleMs();
};
