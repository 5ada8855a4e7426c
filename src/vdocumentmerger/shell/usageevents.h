#pragma once

#include <QHash>
#include <QString>

#include "vdocumentmerger_export.h"

// Usage events go to the host's event log through the application controller. Without a
// controller or container nothing is sent; sending never waits for an answer.

VDOCUMENTMERGER_EXPORT void sendUsageEvent(const QString &name, const QHash<QString, QString> &params);
// "vas_wordmerge_click" with params.
VDOCUMENTMERGER_EXPORT void sendClickEvent(const QHash<QString, QString> &params);
// "vas_wordmerge_popup" with "type" and "action".
VDOCUMENTMERGER_EXPORT void sendPopupEvent(const QString &type, const QString &action);
