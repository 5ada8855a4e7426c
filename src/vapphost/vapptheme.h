#pragma once

#include <QString>

#include "vapphost_export.h"

// Switches the whole process between the light and the dark theme: the toolkit's theme store
// and, through it, the palette that plain Qt widgets (menus, the sign-in dialog) paint with.
class VAPPHOST_EXPORT VAppTheme {
public:
    // "light" or "dark"; anything else is refused with false and changes nothing.
    static bool apply(const QString &name);
    static QString current();
    static bool isKnown(const QString &name);

    // Factor for logical pixel sizes; 0 restores the screen's own.
    static void setScale(double factor);
    static double scale();
};
