#pragma once

#include "vcomrt/com.h"

namespace vcomrt {

// The calling thread's COM apartment: entered and left in pairs, counted per thread.
// A thread that entered none still may create objects while some thread holds the
// multithreaded apartment, since it implicitly belongs to it.
class Apartment {
public:
    static HRESULT enter(DWORD coInit);
    static void leave();
    static bool canActivate();
};

} // namespace vcomrt
