#pragma once

#include <QString>

class QWidget;

// Gives widgets the look of their theme class and keeps it current across theme switches.
class VLiteThemeApplier
{
public:
    // Sets the ObjectThemeClassName property and the class's look as the widget's style sheet.
    // A class without a look leaves a style sheet set by the widget's owner alone.
    static void apply(QWidget* widget, const QString& themeClass, bool cascade);
    // Like apply(), for a look the widget picks itself: a style sheet set by the widget's owner
    // is kept.
    static void applyDefault(QWidget* widget, const QString& themeClass);
    // Re-applies the class given with apply(), if any, and repaints the widget.
    static void reapply(QWidget* widget);
    // Makes the widget repaint (and re-apply its class) on every theme switch; safe to repeat.
    static void follow(QWidget* widget);
};
