#include <liolite/vlitestyle.h>

#include <liolite/vlitethemenotifier.h>

#include "vlitethemestore.h"

#include <QApplication>
#include <QStyle>
#include <QScreen>

namespace {

double& scaleOverrideValue()
{
    static double value = 0.0;
    return value;
}

} // namespace

double VLiteStyle::dpi()
{
    const double forced = scaleOverrideValue();
    if (forced > 0.0)
        return forced;
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return 1.0;
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return 1.0;
    const double logical = screen->logicalDotsPerInch();
    return logical > 0.0 ? logical / 96.0 : 1.0;
}

void VLiteStyle::setScaleOverride(double factor)
{
    scaleOverrideValue() = factor > 0.0 ? factor : 0.0;
}

double VLiteStyle::scaleOverride()
{
    return scaleOverrideValue();
}

double VLiteStyle::dpiScaled(double length)
{
    return length * dpi();
}

QSize VLiteStyle::dpiScaledSize(int width, int height)
{
    const double f = dpi();
    return QSize(int(width * f), int(height * f));
}

QMargins VLiteStyle::dpiScaledMargins(const QMargins& margins)
{
    const double f = dpi();
    return QMargins(int(margins.left() * f), int(margins.top() * f), int(margins.right() * f),
                    int(margins.bottom() * f));
}

namespace {

void applyApplicationPalette()
{
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        QApplication::setPalette(VLiteThemeStore::instance()->widgetPalette(QApplication::style()->standardPalette()));
}

} // namespace

bool VLiteStyle::setTheme(const QString& name)
{
    VLiteThemeStore* store = VLiteThemeStore::instance();
    if (store->name() == name) {
        applyApplicationPalette();
        return true;
    }
    if (!store->load(name))
        return false;
    applyApplicationPalette();
    emit notifier()->themeChanged();
    return true;
}

QString VLiteStyle::themeName()
{
    return VLiteThemeStore::instance()->name();
}

QStringList VLiteStyle::availableThemes()
{
    return VLiteThemeStore::availableThemes();
}

VLiteThemeNotifier* VLiteStyle::notifier()
{
    static VLiteThemeNotifier* instance = new VLiteThemeNotifier;
    return instance;
}
