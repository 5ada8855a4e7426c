#include "table/vmfiletablescrollbarmask.h"

VMFileTableScrollBarMask::VMFileTableScrollBarMask(QScrollBar *realScrollBar, QWidget *parent)
    : QScrollBar(Qt::Vertical, parent)
{
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    // Start from the real bar's state; the area keeps the two in step from here on.
    setRange(realScrollBar->minimum(), realScrollBar->maximum());
    onStepChanged(realScrollBar->pageStep(), realScrollBar->singleStep());
    setValue(realScrollBar->value());
    hide();
}

void VMFileTableScrollBarMask::setRangeAction(int min, int max)
{
    setVisible(min < max);
    setRange(min, max);
}

void VMFileTableScrollBarMask::onStepChanged(int pageStep, int singleStep)
{
    setPageStep(pageStep);
    setSingleStep(singleStep);
}
