#pragma once

#include <string>

namespace vcomrt {

// Unpaired surrogates become U+FFFD.
std::string toUtf8(const char16_t *text);
// Invalid sequences become U+FFFD.
std::u16string toUtf16(const std::string &text);

} // namespace vcomrt
