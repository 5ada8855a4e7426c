#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

// A dot with a line running right from it, in the theme's accent colour.
class VDOCUMENTMERGER_EXPORT VMSplitLine : public QWidget {
    Q_OBJECT
public:
    // dotDiameter and lineThickness are already DPI-scaled by the caller.
    VMSplitLine(QWidget *parent, int dotDiameter, int lineThickness);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_dotDiameter;
    int m_lineThickness;
};
