#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

// Check box whose indicator is one of the theme's check box images.
class VDOCUMENTMERGER_EXPORT VMCheckBox : public VLiteCheckBox {
    Q_OBJECT
public:
    explicit VMCheckBox(QWidget *parent = nullptr);
    explicit VMCheckBox(const QString &text, QWidget *parent = nullptr);

    // The image name and icon mode/state the indicator is drawn with for a style state.
    struct Indicator {
        QString iconName;
        QIcon::Mode mode = QIcon::Normal;
        QIcon::State state = QIcon::Off;
    };
    static Indicator indicatorFor(QStyle::State state);

protected:
    void drawIndicator(QPainter *painter, const QStyleOption *option, const QRect &rect) override;
};
