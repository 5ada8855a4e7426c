#pragma once

#include <QString>

#include "vdocumentmerger_export.h"

// The host operations the widgets use. Each goes through the application controller and
// gives its empty answer, doing nothing, when there is no controller, container or account.

VDOCUMENTMERGER_EXPORT bool isLoggedIn();
// Starts the host's own sign-in flow, only while nobody is signed in; returns at once.
VDOCUMENTMERGER_EXPORT void requestLogin();
VDOCUMENTMERGER_EXPORT QString userId();
// The source text the host was started with.
VDOCUMENTMERGER_EXPORT QString startSource();
