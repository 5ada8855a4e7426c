#include "engine/enginelog.h"

Q_LOGGING_CATEGORY(lcEngine, "vdocumentmerger.engine", QtWarningMsg)
