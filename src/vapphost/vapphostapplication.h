#pragma once

#include "vapphost_export.h"

// The host program from the command line to the end of its event loop.
// Exit codes: 0 done, 1 bad command line or no display, 2 the add-on could not be loaded,
// 3 the screenshot could not be saved.
class VAPPHOST_EXPORT VAppHostApplication {
public:
    enum ExitCode { ExitOk = 0, ExitUsage = 1, ExitAddon = 2, ExitScreenshot = 3 };

    static int run(int &argc, char **argv);
};
