#pragma once

#include <QLoggingCategory>

#include "vapphost_export.h"

VAPPHOST_EXPORT Q_DECLARE_LOGGING_CATEGORY(lcVAppHost)
