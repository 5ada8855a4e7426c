#include "vapplogging.h"

Q_LOGGING_CATEGORY(lcVAppHost, "vapphost", QtWarningMsg)
