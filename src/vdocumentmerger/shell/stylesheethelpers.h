#pragma once

#include <QColor>
#include <QString>

#include "vdocumentmerger_export.h"

// Style sheets are written in logical pixels; every "<digits>px" (any letter case) is
// multiplied by the toolkit's scale factor and rounded, halves upward.
VDOCUMENTMERGER_EXPORT QString dpiScaledStyleSheet(const QString &sheet);

// The theme's colour for class and key (or defaultColor) as "rgba(r,g,b,a)", all 0..255.
VDOCUMENTMERGER_EXPORT QString themeColorRgba(const QString &themeClass, const QString &key,
                                              const QColor &defaultColor);

// The two builders return unscaled sheets: pass them through dpiScaledStyleSheet().
VDOCUMENTMERGER_EXPORT QString scrollBarStyleSheet(const QString &background, const QString &selectorPrefix,
                                                   int thickness, int handleMargin, int endPadding, int radius);
VDOCUMENTMERGER_EXPORT QString spinBoxStyleSheet();
