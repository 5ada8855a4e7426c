#include "registrationfile.h"

#include <fstream>
#include <sstream>

#include "guid.h"
#include "utf.h"

namespace vcomrt {

namespace {

std::string trimmed(const std::string &text)
{
    const char *blanks = " \t\r\n\f\v";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    const size_t last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

// ProgIDs are looked up without regard to ASCII case, as registry keys are.
std::string asciiLower(std::string text)
{
    for (char &c : text) {
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    }
    return text;
}

} // namespace

bool RegistrationFile::read(const std::string &path, RegistrationFile *out, std::string *error)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        *error = "cannot read " + path;
        return false;
    }
    std::ostringstream content;
    content << in.rdbuf();
    const size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? std::string(".") : path.substr(0, slash);
    if (!parse(content.str(), folder, out, error)) {
        *error = path + ": " + *error;
        return false;
    }
    return true;
}

bool RegistrationFile::parse(const std::string &content, const std::string &folder,
                             RegistrationFile *out, std::string *error)
{
    RegistrationFile result;
    bool haveProgId = false;
    bool haveClsid = false;
    bool haveLibrary = false;
    std::istringstream lines(content);
    std::string line;
    int lineNumber = 0;
    while (std::getline(lines, line)) {
        ++lineNumber;
        line = trimmed(line);
        if (line.empty() || line[0] == '#')
            continue;
        const size_t eq = line.find('=');
        if (eq == std::string::npos) {
            *error = "line " + std::to_string(lineNumber) + " has no '='";
            return false;
        }
        const std::string key = asciiLower(trimmed(line.substr(0, eq)));
        const std::string value = trimmed(line.substr(eq + 1));
        bool *seen = nullptr;
        if (key == "progid") {
            seen = &haveProgId;
            result.m_progId = value;
        } else if (key == "clsid") {
            seen = &haveClsid;
            if (!parseGuid(toUtf16(value), &result.m_clsid)) {
                *error = "malformed CLSID '" + value + "'";
                return false;
            }
        } else if (key == "library") {
            seen = &haveLibrary;
            result.m_libraryPath = value;
        } else {
            continue; // unknown keys leave room for later additions
        }
        if (*seen) {
            *error = "key '" + key + "' given twice";
            return false;
        }
        if (value.empty()) {
            *error = "empty value for '" + key + "'";
            return false;
        }
        *seen = true;
    }
    if (!haveProgId || !haveClsid || !haveLibrary) {
        *error = "needs ProgID, CLSID and Library";
        return false;
    }
    if (result.m_libraryPath[0] != '/')
        result.m_libraryPath = folder + "/" + result.m_libraryPath;
    *out = result;
    return true;
}

bool RegistrationFile::matchesProgId(const std::string &progId) const
{
    return asciiLower(progId) == asciiLower(m_progId);
}

} // namespace vcomrt
