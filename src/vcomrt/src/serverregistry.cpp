#include "serverregistry.h"

#include <dirent.h>
#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>

#include "trace.h"

namespace vcomrt {

namespace {

bool endsWith(const std::string &text, const std::string &suffix)
{
    return text.size() >= suffix.size()
        && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::vector<std::string> registrationFiles(const std::string &folder)
{
    std::vector<std::string> names;
    DIR *dir = opendir(folder.c_str());
    if (!dir)
        return names;
    while (const dirent *e = readdir(dir)) {
        const std::string name = e->d_name;
        if (name[0] != '.' && endsWith(name, ".reg"))
            names.push_back(name);
    }
    closedir(dir);
    std::sort(names.begin(), names.end());
    for (std::string &name : names)
        name = folder + "/" + name;
    return names;
}

} // namespace

std::string ServerRegistry::defaultFolder()
{
    Dl_info info;
    if (!dladdr(reinterpret_cast<void *>(&ServerRegistry::defaultFolder), &info) || !info.dli_fname)
        return std::string();
    const std::string library = info.dli_fname;
    const size_t slash = library.find_last_of('/');
    const std::string folder = slash == std::string::npos ? std::string(".") : library.substr(0, slash);
    return folder + "/vcomrt.d";
}

std::vector<std::string> ServerRegistry::searchFolders()
{
    std::vector<std::string> folders;
    if (const char *extra = std::getenv("VCOMRT_REGISTRY")) {
        std::string list = extra;
        size_t start = 0;
        while (start <= list.size()) {
            size_t end = list.find(':', start);
            if (end == std::string::npos)
                end = list.size();
            if (end > start)
                folders.push_back(list.substr(start, end - start));
            start = end + 1;
        }
    }
    const std::string own = defaultFolder();
    if (!own.empty())
        folders.push_back(own);
    return folders;
}

template <typename Match>
bool ServerRegistry::find(Match match, RegistrationFile *entry)
{
    for (const std::string &folder : searchFolders()) {
        for (const std::string &path : registrationFiles(folder)) {
            RegistrationFile file;
            std::string error;
            if (!RegistrationFile::read(path, &file, &error)) {
                Trace::message("ignoring registration: " + error);
                continue;
            }
            if (match(file)) {
                *entry = file;
                return true;
            }
        }
    }
    return false;
}

bool ServerRegistry::findByProgId(const std::string &progId, RegistrationFile *entry)
{
    return find([&](const RegistrationFile &f) { return f.matchesProgId(progId); }, entry);
}

bool ServerRegistry::findByClsid(const CLSID &clsid, RegistrationFile *entry)
{
    return find([&](const RegistrationFile &f) { return IsEqualGUID(f.clsid(), clsid); }, entry);
}

} // namespace vcomrt
