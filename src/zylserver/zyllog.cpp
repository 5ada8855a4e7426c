#include "zyllog.h"

Q_LOGGING_CATEGORY(lcZylServer, "vzyl.server", QtWarningMsg)
