#pragma once

#include <QColor>
#include <QHash>
#include <QPalette>
#include <QString>
#include <QStringList>

// The colours and looks of one theme, read from ":/liolite/themes/<name>.json":
//
//   { "palette": { "accent": "#417FF9", ... },
//     "classes": { "<theme class>": { "colors": { "<key>": "#RRGGBB" | "#AARRGGBB" | "@palette" },
//                                     "style": "$self { color: @<key>; }" } } }
//
// In a style, "$self" selects the widgets of the class and "@name" is one of the class's colours
// (or, failing that, a palette colour), written as rgba(). Pixel sizes are scaled by
// VLiteStyle::dpi() when the style is handed out.
class VLiteThemeStore
{
public:
    static VLiteThemeStore* instance();

    static QStringList availableThemes();
    static QString themeResource(const QString& name);

    bool load(const QString& name);
    QString name() const { return m_name; }

    bool hasClass(const QString& themeClass) const;
    QStringList classes() const;
    QStringList keys(const QString& themeClass) const;
    // Invalid QColor when the class has no such key.
    QColor color(const QString& themeClass, const QString& key) const;
    // The class's look ready for QWidget::setStyleSheet(); empty when the class has none.
    QString styleSheet(const QString& themeClass) const;
    // The class's look as written in the theme, before substitution.
    QString rawStyle(const QString& themeClass) const;

    QString iconPath(const QString& iconName) const;
    // Widget palette in the theme's colours, for the plain Qt widgets around the toolkit's.
    QPalette widgetPalette(const QPalette& base) const;

    // styleSheet() scaled by factor, computed once per theme and factor: widgets ask for it on every creation.
    QString scaledStyleSheet(const QString& themeClass, double factor) const;

    static QString scalePixelSizes(const QString& sheet, double factor);
    static QString selectorFor(const QString& themeClass);

private:
    VLiteThemeStore() = default;

    struct ThemeClass {
        QHash<QString, QColor> colors;
        QString style;
    };

    QColor resolve(const QString& value, const QHash<QString, QColor>& palette) const;

    QString m_name;
    QHash<QString, QColor> m_palette;
    QHash<QString, ThemeClass> m_classes;
    mutable QHash<QString, QString> m_scaledSheets;
    mutable double m_scaledFactor = 0.0;
};
