#pragma once

#include <string>

namespace vcomrt {

// Why an activation failed, written to stderr when VCOMRT_DEBUG is set to anything but "0":
// the status codes alone do not say which file or symbol was at fault.
class Trace {
public:
    static bool enabled();
    static void message(const std::string &text);
};

} // namespace vcomrt
