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

void VMCheckBox::drawIndicator(QPainter *painter, const QStyleOption *option, const QRect &rect)
{
    if (!painter || !option || !rect.isValid())
        return;
    const QStyle::State state = option->state;
    QIcon::Mode mode = QIcon::Normal;
    if (!(state & QStyle::State_Enabled))
        mode = QIcon::Disabled;
    else if (state & (QStyle::State_Sunken | QStyle::State_Selected))
        mode = QIcon::Selected;
    else if (state & QStyle::State_MouseOver)
        mode = QIcon::Active;

    QString iconName = QStringLiteral("vmcheckbox_unchecked");
    if (state & QStyle::State_NoChange)
        iconName = QStringLiteral("vmcheckbox_partchecked");
    else if (state & QStyle::State_On)
        iconName = QStringLiteral("vmcheckbox_checked");
    const QIcon::State iconState = (state & (QStyle::State_NoChange | QStyle::State_On)) ? QIcon::On : QIcon::Off;

    VDrawHelper::checkCleanSurface(this);
    const QIcon icon = VDrawHelper::loadIcon(iconName);
    if (icon.isNull() || icon.availableSizes(QIcon::Normal, QIcon::Off).isEmpty())
        return;
    icon.paint(painter, rect, Qt::AlignHCenter | Qt::AlignVCenter, mode, iconState);
}
