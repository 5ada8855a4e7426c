#pragma once

#include <string>
#include <vector>

#include "registrationfile.h"

namespace vcomrt {

// The registry of in-process servers: the folders named in VCOMRT_REGISTRY (':'-separated), then
// the vcomrt.d folder beside this library. Files ending in ".reg" are read in name order within a
// folder; the first registration that matches wins. Folders are read again on every look-up, so
// a registration takes effect without restarting the process.
class ServerRegistry {
public:
    static std::vector<std::string> searchFolders();
    static bool findByProgId(const std::string &progId, RegistrationFile *entry);
    static bool findByClsid(const CLSID &clsid, RegistrationFile *entry);

private:
    static std::string defaultFolder();
    template <typename Match>
    static bool find(Match match, RegistrationFile *entry);
};

} // namespace vcomrt
