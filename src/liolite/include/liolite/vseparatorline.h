#pragma once

#include <liolite/liolite_export.h>

#include <QWidget>

// A thin line, horizontal or vertical, centred in the widget, in the theme colour of its class
// (key "content"; class "VSeparatorLine" unless another is set).
class LIOLITE_EXPORT VSeparatorLine : public QWidget
{
    Q_OBJECT
public:
    explicit VSeparatorLine(QWidget* parent = nullptr, Qt::Orientation orientation = Qt::Horizontal);

    // Thickness in logical pixels, scaled when painted; at least 1.
    void setLineWidth(int width);
    int lineWidth() const;
    Qt::Orientation orientation() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Qt::Orientation m_orientation;
    int m_lineWidth = 1;
};
