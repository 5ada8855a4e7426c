#include <liolite/vdrawhelper.h>

#include "vliteiconengine.h"
#include "vlitethemestore.h"

#include <QVariant>
#include <QWidget>

const char* const VDrawHelper::ObjectThemeClassName = "ObjectThemeClassName";
const char* const VDrawHelper::Prop_Content = "content";

QIcon VDrawHelper::loadIcon(const QString& iconSet)
{
    QStringList names = iconSet.split(QLatin1Char(';'));
    for (QString& name : names)
        name = name.trimmed();
    // Names past the fourth have no mode to go to.
    while (names.size() > 4)
        names.removeLast();

    bool any = false;
    for (const QString& name : qAsConst(names))
        any = any || !VLiteThemeStore::instance()->iconPath(name).isEmpty();
    if (!any)
        return QIcon();
    return QIcon(new VLiteIconEngine(names));
}

QString VDrawHelper::iconPath(const QString& name)
{
    return VLiteThemeStore::instance()->iconPath(name);
}

QColor VDrawHelper::getColorFromTheme(const QString& themeClass, const QString& key,
                                      const QColor& defaultColor)
{
    const QColor c = VLiteThemeStore::instance()->color(themeClass, key);
    return c.isValid() ? c : defaultColor;
}

QString VDrawHelper::getObjectThemeClassName(const QObject* object, const QString& defaultClass)
{
    if (!object)
        return defaultClass;
    const QString name = object->property(ObjectThemeClassName).toString();
    return name.isEmpty() ? defaultClass : name;
}

bool VDrawHelper::checkCleanSurface(const QWidget* widget)
{
    for (const QWidget* w = widget; w; w = w->parentWidget()) {
        if (w->autoFillBackground() || w->testAttribute(Qt::WA_OpaquePaintEvent))
            return true;
        if (w->testAttribute(Qt::WA_StyledBackground) && !w->styleSheet().isEmpty())
            return true;
        if (w->isWindow())
            return !w->testAttribute(Qt::WA_TranslucentBackground);
    }
    return false;
}
