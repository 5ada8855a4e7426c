#pragma once

#include <liolite/liolite_export.h>

#include <QString>

namespace yrt {
namespace product {

// Display name of the suite's cloud drive, for user-visible texts.
LIOLITE_EXPORT QString getZYLDriveDisplayName();

} // namespace product
} // namespace yrt
