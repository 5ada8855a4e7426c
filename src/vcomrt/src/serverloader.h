#pragma once

#include <map>
#include <mutex>
#include <string>

#include "vcomrt/com.h"

namespace vcomrt {

// Loads server libraries once and keeps them for the life of the process: objects they made may
// outlive every reference the runtime knows of. Thread-safe.
class ServerLoader {
public:
    static ServerLoader &instance();

    // S_OK with *entry set; CO_E_DLLNOTFOUND when the library cannot be loaded,
    // CO_E_ERRORINDLL when it does not export DllGetClassObject.
    HRESULT classObjectEntry(const std::string &libraryPath, LPFNGETCLASSOBJECT *entry);

private:
    ServerLoader() = default;

    std::mutex m_mutex;
    // Keyed by resolved path; null for a loaded library without the entry point.
    std::map<std::string, LPFNGETCLASSOBJECT> m_entries;
};

} // namespace vcomrt
