#pragma once

#include <string>

#include "vcomrt/com.h"

namespace vcomrt {

// One server registration, read from a text file of "Key=Value" lines:
//   ProgID=VZyl.Application
//   CLSID={8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}
//   Library=../libzylserver.so
// Keys are case-insensitive; blanks around keys and values, empty lines and lines starting with
// '#' are ignored. Library is absolute or relative to the folder holding the file. All three keys
// are required, and a file that repeats a key or has a line without '=' is refused.
class RegistrationFile {
public:
    // Returns false and sets *error when the file cannot be read or is malformed.
    static bool read(const std::string &path, RegistrationFile *out, std::string *error);
    static bool parse(const std::string &content, const std::string &folder, RegistrationFile *out,
                      std::string *error);

    const std::string &progId() const { return m_progId; }
    const CLSID &clsid() const { return m_clsid; }
    // Absolute, or relative to the working folder when the file's folder was relative.
    const std::string &libraryPath() const { return m_libraryPath; }
    bool matchesProgId(const std::string &progId) const;

private:
    std::string m_progId;
    CLSID m_clsid = {};
    std::string m_libraryPath;
};

} // namespace vcomrt
