#include "shell/stylesheethelpers.h"

#include <QtMath>

#include "host/liolite.h"

QString dpiScaledStyleSheet(const QString &sheet)
{
    if (sheet.isEmpty())
        return sheet;
    // A plain scan: rows build these sheets by the hundred, and a regular expression was a quarter of their cost.
    const double factor = VLiteStyle::dpi();
    const int size = sheet.size();
    QString result;
    result.reserve(size + size / 8);
    int copied = 0;
    int i = 0;
    while (i < size) {
        if (!sheet.at(i).isDigit()) {
            ++i;
            continue;
        }
        const int start = i;
        while (i < size && sheet.at(i).isDigit())
            ++i;
        if (i + 1 < size && sheet.at(i).toLower() == QLatin1Char('p')
            && sheet.at(i + 1).toLower() == QLatin1Char('x')) {
            result += sheet.midRef(copied, start - copied);
            result += QString::number(qRound(sheet.midRef(start, i - start).toInt() * factor));
            copied = i;
            i += 2;
        }
    }
    result += sheet.midRef(copied);
    return result;
}

QString themeColorRgba(const QString &themeClass, const QString &key, const QColor &defaultColor)
{
    const QColor c = VDrawHelper::getColorFromTheme(themeClass, key, defaultColor);
    return QStringLiteral("rgba(%1,%2,%3,%4)").arg(c.red()).arg(c.green()).arg(c.blue()).arg(c.alpha());
}

QString scrollBarStyleSheet(const QString &background, const QString &selectorPrefix, int thickness,
                            int handleMargin, int endPadding, int radius)
{
    const QString themeClass = QStringLiteral("VxContentListArea");
    const QString handle = themeColorRgba(themeClass, QStringLiteral("scroll-handle"), QColor(217, 217, 217, 255));
    const QString hover = themeColorRgba(themeClass, QStringLiteral("scroll-handle-hover"), QColor(179, 179, 179, 255));
    const QString down = themeColorRgba(themeClass, QStringLiteral("scroll-handle-down"), QColor(153, 153, 153, 255));
    const QString sheet = QStringLiteral(
        "%10 QScrollBar:vertical {border: none;max-width:%1px; background-color:%8;padding-top:%2px;padding-bottom:%2px;}"
        "%10 QScrollBar::handle:vertical {background: %4; border-radius: %5px;min-height:20px; margin-right:%3px;}"
        "%10 QScrollBar::handle:vertical:hover{background: %6;}"
        "%10 QScrollBar::handle:vertical:pressed{background: %7;}"
        "%10 QScrollBar::add-page:vertical,QScrollBar::sub-page:vertical{background:none;}"
        "%10 QScrollBar::add-line:vertical,QScrollBar::sub-line:vertical{background:none; height: 0px;}"
        "%10 QScrollBar:horizontal {border: none;height:%1px; background-color:%8;padding-left:%3px;padding-right:%3px;}"
        "%10 QScrollBar::handle:horizontal {background: %4;border-radius: %5px;min-width:20px; margin-bottom:%2px;}"
        "%10 QScrollBar::handle:horizontal:hover{background: %6;}"
        "%10 QScrollBar::handle:horizontal:pressed{background: %7;}"
        "%10 QScrollBar::add-page:horizontal,QScrollBar::sub-page:horizontal{background:none;}"
        "%10 QScrollBar::add-line:horizontal,QScrollBar::sub-line:horizontal{background:none; width: 0px;}");
    return sheet.arg(thickness)
        .arg(endPadding)
        .arg(handleMargin)
        .arg(handle)
        .arg(radius)
        .arg(hover)
        .arg(down)
        .arg(background)
        .arg(selectorPrefix);
}

QString spinBoxStyleSheet()
{
    const QString themeClass = QStringLiteral("VMSpinBox");
    const QString border = themeColorRgba(themeClass, QStringLiteral("border"), QColor(QStringLiteral("#D7D9DE")));
    const QString text = themeColorRgba(themeClass, QStringLiteral("text"), QColor(QStringLiteral("#36425A")));
    const QString textDisabled = themeColorRgba(themeClass, QStringLiteral("text-disable"), QColor(QStringLiteral("#999999")));
    const QString buttonBackground =
        themeColorRgba(themeClass, QStringLiteral("button-background"), QColor(QStringLiteral("#ffffff")));
    const QString hover = themeColorRgba(themeClass, QStringLiteral("spinbox-hover"), QColor(QStringLiteral("#f0f0f0")));
    const QString pressed = themeColorRgba(themeClass, QStringLiteral("spinbox-pressed"), QColor(QStringLiteral("#d9d9d9")));
    const QString selection =
        themeColorRgba(themeClass, QStringLiteral("selection-background-color"), QColor(QStringLiteral("#3399ff")));
    const QString sheet = QStringLiteral(
        "QSpinBox{padding-left: 4px;border:1px solid %1;border-radius: 3px;color:%2;font-size:12px;"
        "font-family:Microsoft YaHei UI;background-color:%4;selection-background-color: %7;}"
        "QSpinBox:disabled{color:%3;}"
        "QSpinBox::up-button{subcontrol-origin: border;subcontrol-position: top right;border-top-right-radius: 3px; "
        "width: 15px; background-color: %4;border-left: 1px solid %1;border-bottom: 1px solid %1;"
        "border-right: 1px solid %1;border-top: 1px solid %1;}"
        "QSpinBox::up-button:hover{background-color:%5;}"
        "QSpinBox::up-button:pressed{background-color:%6;}"
        "QSpinBox::up-arrow{width:8px;height:8px;image:url(:/shared/icons/spinbox_stroke_uparrow_l_8.svg);}"
        "QSpinBox::up-arrow:disabled{width:8px;height:8px;image:url(:/shared/icons/spinbox_stroke_uparrow_l_8_disable.svg);}"
        "QSpinBox::down-arrow{width:8px;height:8px;image: url(:/shared/icons/spinbox_stroke_downarrow_l_8.svg);}"
        "QSpinBox::down-arrow:disabled{width:8px;height:8px;image: url(:/shared/icons/spinbox_stroke_downarrow_l_8_disable.svg);}"
        "QSpinBox::down-button{subcontrol-origin: border;subcontrol-position: bottom right;"
        "border-bottom-right-radius: 3px;width:15px;background-color:%4;border-left: 1px solid %1;"
        "border-right: 1px solid %1;border-bottom: 1px solid %1;}"
        "QSpinBox::down-button:hover{background-color:%5;}"
        "QSpinBox::down-button:pressed{background-color:%6;}");
    return sheet.arg(border).arg(text).arg(textDisabled).arg(buttonBackground).arg(hover).arg(pressed).arg(selection);
}
