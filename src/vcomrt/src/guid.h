// GUID text in registry form, "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}", hex digits in either case.
#pragma once

#include <string>

#include "vcomrt/com.h"

namespace vcomrt {

// Returns false and leaves *guid zeroed when text is not exactly one GUID in braces.
bool parseGuid(const std::u16string &text, GUID *guid);
// Upper-case hex, braces included: 38 characters.
std::u16string formatGuid(const GUID &guid);

} // namespace vcomrt
