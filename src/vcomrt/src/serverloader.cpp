#include "serverloader.h"

#include <dlfcn.h>
#include <stdlib.h>

#include "trace.h"

namespace vcomrt {

ServerLoader &ServerLoader::instance()
{
    static ServerLoader loader;
    return loader;
}

HRESULT ServerLoader::classObjectEntry(const std::string &libraryPath, LPFNGETCLASSOBJECT *entry)
{
    *entry = nullptr;
    char *resolved = realpath(libraryPath.c_str(), nullptr);
    if (!resolved) {
        Trace::message("server library not found: " + libraryPath);
        return CO_E_DLLNOTFOUND;
    }
    const std::string key = resolved;
    free(resolved);

    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_entries.find(key);
    if (it == m_entries.end()) {
        void *handle = dlopen(key.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!handle) {
            const char *why = dlerror();
            Trace::message("cannot load " + key + ": " + (why ? why : "unknown error"));
            return CO_E_DLLNOTFOUND;
        }
        dlerror();
        void *symbol = dlsym(handle, "DllGetClassObject");
        if (!symbol)
            Trace::message(key + " does not export DllGetClassObject");
        it = m_entries.emplace(key, reinterpret_cast<LPFNGETCLASSOBJECT>(symbol)).first;
    }
    if (!it->second)
        return CO_E_ERRORINDLL;
    *entry = it->second;
    return S_OK;
}

} // namespace vcomrt
