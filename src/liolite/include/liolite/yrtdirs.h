#pragma once

#include <liolite/liolite_export.h>

#include <QString>

namespace yrt {
namespace dirs {

// The installed resources folder: "resources" beside the folder that holds the toolkit library
// (<prefix>/lib/libliolite.so -> <prefix>/resources), absolute, with "/" separators and no
// trailing separator. The folder need not exist.
LIOLITE_EXPORT QString resources();

} // namespace dirs
} // namespace yrt
