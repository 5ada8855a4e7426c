#pragma once

#include <QScrollBar>

#include "vdocumentmerger_export.h"

// The content area's own vertical scroll bar. It is never shown; it announces step changes
// so that the overlay bar can follow them.
class VDOCUMENTMERGER_EXPORT VMFileTableScrollBar : public QScrollBar {
    Q_OBJECT
public:
    explicit VMFileTableScrollBar(Qt::Orientation orientation, QWidget *parent = nullptr);

signals:
    void stepChanged(int pageStep, int singleStep);

protected:
    void sliderChange(SliderChange change) override;
};
