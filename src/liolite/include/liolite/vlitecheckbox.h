#pragma once

#include <liolite/liolite_export.h>

#include <QCheckBox>

class QStyleOption;

// Check box whose indicator is drawn by drawIndicator(), which subclasses may replace.
class LIOLITE_EXPORT VLiteCheckBox : public QCheckBox
{
    Q_OBJECT
public:
    explicit VLiteCheckBox(QWidget* parent = nullptr);
    explicit VLiteCheckBox(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    // Draws the indicator for option->state (State_On, State_Off, State_NoChange, State_Enabled,
    // State_MouseOver, State_Sunken) into rect. The default draws a flat themed box.
    virtual void drawIndicator(QPainter* painter, const QStyleOption* option, const QRect& rect);

    QRect indicatorRect() const;
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& pos) const override;
};
