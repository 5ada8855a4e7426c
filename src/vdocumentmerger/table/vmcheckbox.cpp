#include "table/vmcheckbox.h"

#include <QPainter>
#include <QStyleOption>

VMCheckBox::VMCheckBox(QWidget *parent)
    : VLiteCheckBox(parent)
{
}

VMCheckBox::VMCheckBox(const QString &text, QWidget *parent)
    : VLiteCheckBox(text, parent)
{
}

VMCheckBox::Indicator VMCheckBox::indicatorFor(QStyle::State state)
{
    Indicator indicator;
    if (!(state & QStyle::State_Enabled))
        indicator.mode = QIcon::Disabled;
    else if (state & (QStyle::State_Sunken | QStyle::State_Selected))
        indicator.mode = QIcon::Selected;
    else if (state & QStyle::State_MouseOver)
        indicator.mode = QIcon::Active;

    if (state & QStyle::State_NoChange)
        indicator.iconName = QStringLiteral("vmcheckbox_partchecked");
    else if (state & QStyle::State_On)
        indicator.iconName = QStringLiteral("vmcheckbox_checked");
    else
        indicator.iconName = QStringLiteral("vmcheckbox_unchecked");
    indicator.state = (state & (QStyle::State_NoChange | QStyle::State_On)) ? QIcon::On : QIcon::Off;
    return indicator;
}

void VMCheckBox::drawIndicator(QPainter *painter, const QStyleOption *option, const QRect &rect)
{
    if (!painter || !option || !rect.isValid())
        return;
    const Indicator indicator = indicatorFor(option->state);
    VDrawHelper::checkCleanSurface(this);
    const QIcon icon = VDrawHelper::loadIcon(indicator.iconName);
    if (icon.isNull() || icon.availableSizes(QIcon::Normal, QIcon::Off).isEmpty())
        return;
    icon.paint(painter, rect, Qt::AlignHCenter | Qt::AlignVCenter, indicator.mode, indicator.state);
}
