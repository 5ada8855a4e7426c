#include "vlitecomboitemdelegate.h"

#include <liolite/vdrawhelper.h>
#include <liolite/vlitestyle.h>

#include <QComboBox>
#include <QPainter>
#include <QPainterPath>

VLiteComboItemDelegate::VLiteComboItemDelegate(QComboBox* combo)
    : QStyledItemDelegate(combo)
    , m_combo(combo)
{
}

void VLiteComboItemDelegate::setShowCheckMark(bool show)
{
    m_showCheckMark = show;
}

QSize VLiteComboItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize hint = QStyledItemDelegate::sizeHint(option, index);
    hint.setHeight(qMax(hint.height(), int(VLiteStyle::dpiScaled(30))));
    hint.setWidth(hint.width() + int(VLiteStyle::dpiScaled(m_showCheckMark ? 40 : 20)));
    return hint;
}

void VLiteComboItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const
{
    const QString cls = VDrawHelper::getObjectThemeClassName(m_combo, QStringLiteral("VLiteComboBox"));
    const bool hovered = option.state & (QStyle::State_MouseOver | QStyle::State_Selected);
    const bool current = index.row() == m_combo->currentIndex();

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillRect(option.rect, VDrawHelper::getColorFromTheme(cls, QStringLiteral("popup-background"), Qt::white));
    if (hovered)
        painter->fillRect(option.rect, VDrawHelper::getColorFromTheme(cls, QStringLiteral("item-hover"), QColor("#F0F3FA")));

    const QColor textColour = current && m_showCheckMark
        ? VDrawHelper::getColorFromTheme(cls, QStringLiteral("item-current"), QColor("#417FF9"))
        : VDrawHelper::getColorFromTheme(cls, QStringLiteral("text"), QColor("#36425A"));
    const int pad = int(VLiteStyle::dpiScaled(10));
    QRect textRect = option.rect.adjusted(pad, 0, -pad, 0);
    if (m_showCheckMark)
        textRect.setRight(textRect.right() - int(VLiteStyle::dpiScaled(20)));
    painter->setPen(textColour);
    painter->setFont(option.font);
    const QString text = option.fontMetrics.elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideMiddle,
                                                       textRect.width());
    painter->drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter, text);

    if (m_showCheckMark && current) {
        const double f = VLiteStyle::dpi();
        const QPointF o(option.rect.right() - pad - 14 * f, option.rect.center().y() - 7 * f);
        QPainterPath tick;
        tick.moveTo(o + QPointF(2 * f, 7.5 * f));
        tick.lineTo(o + QPointF(5.5 * f, 11 * f));
        tick.lineTo(o + QPointF(12 * f, 3.5 * f));
        painter->setPen(QPen(textColour, 1.6 * f, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(tick);
    }
    painter->restore();
}
