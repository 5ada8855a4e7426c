#include <liolite/vlitecheckbox.h>

#include <liolite/vdrawhelper.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitethemenotifier.h>

#include "vlitethemeapplier.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionButton>

namespace {

const int IndicatorSize = 16;
const int TextSpacing = 6;

} // namespace

VLiteCheckBox::VLiteCheckBox(QWidget* parent)
    : VLiteCheckBox(QString(), parent)
{
}

VLiteCheckBox::VLiteCheckBox(const QString& text, QWidget* parent)
    : QCheckBox(text, parent)
{
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    VLiteThemeApplier::applyDefault(this, QStringLiteral("VLiteCheckBox"));
}

QRect VLiteCheckBox::indicatorRect() const
{
    const QRect area = contentsRect();
    const int side = qMin(int(VLiteStyle::dpiScaled(IndicatorSize)), qMin(area.width(), area.height()));
    return QRect(area.left(), area.top() + (area.height() - side) / 2, side, side);
}

QSize VLiteCheckBox::sizeHint() const
{
    const int side = int(VLiteStyle::dpiScaled(IndicatorSize));
    const QFontMetrics fm(font());
    int width = side;
    if (!text().isEmpty())
        width += int(VLiteStyle::dpiScaled(TextSpacing)) + fm.horizontalAdvance(text());
    const QMargins m = contentsMargins();
    return QSize(width + m.left() + m.right(), qMax(side, fm.height()) + m.top() + m.bottom());
}

QSize VLiteCheckBox::minimumSizeHint() const
{
    return sizeHint();
}

bool VLiteCheckBox::hitButton(const QPoint& pos) const
{
    return rect().contains(pos);
}

void VLiteCheckBox::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRect indicator = indicatorRect();
    drawIndicator(&painter, &option, indicator);

    if (!text().isEmpty()) {
        QRect textArea = contentsRect();
        textArea.setLeft(indicator.right() + 1 + int(VLiteStyle::dpiScaled(TextSpacing)));
        style()->drawItemText(&painter, textArea, Qt::AlignLeft | Qt::AlignVCenter, option.palette,
                              isEnabled(), text(), QPalette::WindowText);
    }
}

void VLiteCheckBox::drawIndicator(QPainter* painter, const QStyleOption* option, const QRect& rect)
{
    if (!painter || !option || !rect.isValid())
        return;

    const QString cls = VDrawHelper::getObjectThemeClassName(this, QStringLiteral("VLiteCheckBox"));
    const bool enabled = option->state & QStyle::State_Enabled;
    const bool hover = option->state & QStyle::State_MouseOver;
    const bool checked = option->state & (QStyle::State_On | QStyle::State_NoChange);

    QColor border = VDrawHelper::getColorFromTheme(cls, hover ? QStringLiteral("border-hover")
                                                              : QStringLiteral("border"),
                                                   QColor("#C0C5CE"));
    QColor fill = VDrawHelper::getColorFromTheme(cls, QStringLiteral("background"), Qt::white);
    const QColor mark = VDrawHelper::getColorFromTheme(cls, QStringLiteral("check"), Qt::white);
    if (checked) {
        fill = VDrawHelper::getColorFromTheme(cls, hover ? QStringLiteral("checked-hover")
                                                         : QStringLiteral("checked"),
                                              QColor("#417FF9"));
        border = fill;
    }

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (!enabled)
        painter->setOpacity(0.45);
    const double f = rect.width() / 16.0;
    const QRectF box = QRectF(rect).adjusted(0.5 * f + 0.5, 0.5 * f + 0.5, -0.5 * f - 0.5, -0.5 * f - 0.5);
    painter->setPen(QPen(border, qMax(1.0, f)));
    painter->setBrush(fill);
    painter->drawRoundedRect(box, 3 * f, 3 * f);

    QPen markPen(mark, 1.6 * f, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter->setPen(markPen);
    painter->setBrush(Qt::NoBrush);
    const QPointF o = rect.topLeft();
    if (option->state & QStyle::State_NoChange) {
        painter->drawLine(o + QPointF(4.5 * f, 8 * f), o + QPointF(11.5 * f, 8 * f));
    } else if (option->state & QStyle::State_On) {
        QPainterPath tick;
        tick.moveTo(o + QPointF(4.5 * f, 8.2 * f));
        tick.lineTo(o + QPointF(7 * f, 10.7 * f));
        tick.lineTo(o + QPointF(11.5 * f, 5.6 * f));
        painter->drawPath(tick);
    }
    painter->restore();
}
