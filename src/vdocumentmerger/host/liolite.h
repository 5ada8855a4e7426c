#pragma once

// The one way into the host's UI toolkit: scaling, theme look-ups, icon sets, the themed
// widgets, the message dialog and the host's folders.
#include <liolite/liolite.h>
