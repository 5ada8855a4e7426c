#pragma once

#include <liolite/liolite_export.h>

#include <QColor>
#include <QIcon>
#include <QString>

class QObject;
class QWidget;

class LIOLITE_EXPORT VDrawHelper
{
public:
    // Dynamic property holding a widget's theme class (a QString).
    static const char* const ObjectThemeClassName;
    // Theme key of a widget's main drawn colour ("content").
    static const char* const Prop_Content;

    // Up to four image names separated by ";" for the modes Normal, Active (hover), Selected
    // (pressed) and Disabled; empty names and a trailing ";" are allowed. A name without an
    // image leaves its mode without an image of its own (Qt then falls back to the Normal one).
    // Returns a null icon when no name has an image. Images follow the current theme.
    static QIcon loadIcon(const QString& iconSet);
    // Resource path of a named image for the current theme, or an empty string.
    static QString iconPath(const QString& name);

    // The current theme's colour for the class and key, else defaultColor.
    static QColor getColorFromTheme(const QString& themeClass, const QString& key,
                                    const QColor& defaultColor);
    // The object's ObjectThemeClassName property, else defaultClass.
    static QString getObjectThemeClassName(const QObject* object,
                                           const QString& defaultClass = QString());

    // True when the pixels under the widget are painted opaque by the widget itself or by an
    // ancestor, so that anti-aliased images drawn on it blend against a known colour. False for
    // a null widget and for widgets that only a translucent window lies under.
    static bool checkCleanSurface(const QWidget* widget);
};
