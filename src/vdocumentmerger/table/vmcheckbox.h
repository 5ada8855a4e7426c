#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

// Check box whose indicator is one of the theme's check box images.
class VDOCUMENTMERGER_EXPORT VMCheckBox : public VLiteCheckBox {
    Q_OBJECT
public:
    explicit VMCheckBox(QWidget *parent = nullptr);
    explicit VMCheckBox(const QString &text, QWidget *parent = nullptr);


protected:
    void drawIndicator(QPainter *painter, const QStyleOption *option, const QRect &rect) override;
};
