#include "table/vmsplitline.h"

#include <QPainter>

#include "host/liolite.h"

VMSplitLine::VMSplitLine(QWidget *parent, int dotDiameter, int lineThickness)
    : QWidget(parent)
    , m_dotDiameter(dotDiameter)
    , m_lineThickness(lineThickness)
{
    setSizePolicy(QSizePolicy::Expanding, sizePolicy().verticalPolicy());
    setFixedHeight(dotDiameter);
}

void VMSplitLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QString themeClass = VDrawHelper::getObjectThemeClassName(this, QString());
    const QColor color = VDrawHelper::getColorFromTheme(themeClass, QString::fromLatin1(VDrawHelper::Prop_Content),
                                                        QColor(QStringLiteral("#417FF9")));
    painter.setBrush(color);
    painter.drawEllipse(QRect(0, 0, m_dotDiameter, m_dotDiameter));
    painter.fillRect(QRect(m_dotDiameter / 2, (m_dotDiameter - m_lineThickness) / 2,
                           width() - m_dotDiameter, m_lineThickness), color);
}
