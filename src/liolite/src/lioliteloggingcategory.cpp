#include "lioliteloggingcategory.h"

Q_LOGGING_CATEGORY(lcLiolite, "liolite", QtWarningMsg)
