#pragma once

#include <liolite/liolite_export.h>

#include <QMargins>
#include <QSize>
#include <QString>
#include <QStringList>

class VLiteThemeNotifier;

// Process-wide scale factor and theme store of the toolkit. GUI thread only.
class LIOLITE_EXPORT VLiteStyle
{
public:
    // Factor by which logical pixel lengths are multiplied: the host's scale override when one
    // is set, else the primary screen's logical DPI / 96, else 1.0 when there is no screen.
    static double dpi();
    // 0 (or a negative value) removes the override.
    static void setScaleOverride(double factor);
    static double scaleOverride();

    static double dpiScaled(double length);
    // Each length is multiplied by dpi() and truncated.
    static QSize dpiScaledSize(int width, int height);
    static QMargins dpiScaledMargins(const QMargins& margins);

    // Switches the theme ("light" or "dark"). Returns false and keeps the current theme for an
    // unknown name. Every toolkit widget restyles itself; themeChanged() is emitted once when the
    // theme really changed. The application palette takes the theme's colours, so plain Qt
    // widgets match. A host sets the theme first and then tells its plug-ins, so that
    // their look-ups already see the new colours.
    static bool setTheme(const QString& name);
    static QString themeName();
    static QStringList availableThemes();

    // Never null; lives until the process ends.
    static VLiteThemeNotifier* notifier();
};
