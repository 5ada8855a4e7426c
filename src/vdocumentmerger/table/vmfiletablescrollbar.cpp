#include "table/vmfiletablescrollbar.h"

VMFileTableScrollBar::VMFileTableScrollBar(Qt::Orientation orientation, QWidget *parent)
    : QScrollBar(orientation, parent)
{
}

void VMFileTableScrollBar::sliderChange(SliderChange change)
{
    if (change == QAbstractSlider::SliderStepsChange)
        emit stepChanged(pageStep(), singleStep());
    QScrollBar::sliderChange(change);
}
