#pragma once

#include <QString>

class QWidget;

// Gives widgets the look of their theme class and keeps it current across theme switches.
class VLiteThemeApplier
{
public:
    // Sets the ObjectThemeClassName property and the class's look as the widget's style sheet.
    static void apply(QWidget* widget, const QString& themeClass, bool cascade);
    // Re-applies the class given with apply(), if any, and repaints the widget.
    static void reapply(QWidget* widget);
    // Makes the widget repaint (and re-apply its class) on every theme switch; safe to repeat.
    static void follow(QWidget* widget);
};
