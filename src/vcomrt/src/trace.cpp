#include "trace.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vcomrt {

bool Trace::enabled()
{
    const char *value = std::getenv("VCOMRT_DEBUG");
    return value && *value && std::strcmp(value, "0") != 0;
}

void Trace::message(const std::string &text)
{
    if (enabled())
        std::fprintf(stderr, "vcomrt: %s\n", text.c_str());
}

} // namespace vcomrt
