#include "vapptheme.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

#include <liolite/vlitestyle.h>

#include "vapplogging.h"

bool VAppTheme::apply(const QString &name)
{
    if (!isKnown(name)) {
        qCWarning(lcVAppHost) << "unknown theme" << name;
        return false;
    }
    // Fusion paints fully from the palette, which the toolkit sets from the theme; the
    // platform's own style may not. The style goes first: changing it resets the palette.
    if (qobject_cast<QApplication *>(QCoreApplication::instance())
        && QApplication::style()->objectName().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0) {
        if (QStyle *fusion = QStyleFactory::create(QStringLiteral("Fusion")))
            QApplication::setStyle(fusion);
    }
    if (!VLiteStyle::setTheme(name)) {
        qCWarning(lcVAppHost) << "the toolkit has no theme" << name;
        return false;
    }
    return true;
}

QString VAppTheme::current()
{
    return VLiteStyle::themeName();
}

bool VAppTheme::isKnown(const QString &name)
{
    return name == QLatin1String("light") || name == QLatin1String("dark");
}

void VAppTheme::setScale(double factor)
{
    VLiteStyle::setScaleOverride(factor);
}

double VAppTheme::scale()
{
    return VLiteStyle::dpi();
}
