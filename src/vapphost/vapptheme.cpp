#include "vapptheme.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

#include <liolite/vlitestyle.h>

#include "vapplogging.h"

namespace {

QPalette darkPalette()
{
    QPalette p;
    const QColor window(0x2b, 0x2d, 0x31);
    const QColor base(0x1f, 0x21, 0x24);
    const QColor text(0xe4, 0xe6, 0xea);
    const QColor disabledText(0x80, 0x84, 0x8c);
    const QColor accent(0x3d, 0x8b, 0xfd);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, window);
    p.setColor(QPalette::ToolTipBase, base);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::PlaceholderText, disabledText);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, QColor(0x37, 0x3a, 0x40));
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, Qt::white);
    p.setColor(QPalette::Light, QColor(0x4a, 0x4d, 0x54));
    p.setColor(QPalette::Midlight, QColor(0x3f, 0x42, 0x48));
    p.setColor(QPalette::Mid, QColor(0x30, 0x32, 0x36));
    p.setColor(QPalette::Dark, QColor(0x18, 0x19, 0x1c));
    p.setColor(QPalette::Shadow, Qt::black);
    p.setColor(QPalette::Highlight, accent);
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Link, accent.lighter(120));
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, disabledText);
    return p;
}

} // namespace

bool VAppTheme::apply(const QString &name)
{
    if (!isKnown(name)) {
        qCWarning(lcVAppHost) << "unknown theme" << name;
        return false;
    }
    VLiteStyle::setTheme(name);
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        // Fusion follows the palette fully; the platform's own style may not.
        if (QApplication::style()->objectName().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0) {
            if (QStyle *fusion = QStyleFactory::create(QStringLiteral("Fusion")))
                QApplication::setStyle(fusion);
        }
        QApplication::setPalette(name == QLatin1String("dark") ? darkPalette()
                                                               : QApplication::style()->standardPalette());
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
