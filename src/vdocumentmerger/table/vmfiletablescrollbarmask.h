#pragma once

#include <QScrollBar>

#include "vdocumentmerger_export.h"

// Thin vertical scroll bar drawn over the right edge of the content area's viewport,
// mirroring the area's hidden real one. Shown only while there is something to scroll.
class VDOCUMENTMERGER_EXPORT VMFileTableScrollBarMask : public QScrollBar {
    Q_OBJECT
public:
    // Starts from realScrollBar's range, steps and value; the caller keeps them in step.
    VMFileTableScrollBarMask(QScrollBar *realScrollBar, QWidget *parent);

public slots:
    void setRangeAction(int min, int max);
    void onStepChanged(int pageStep, int singleStep);
};
