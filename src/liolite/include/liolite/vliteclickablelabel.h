#pragma once

#include <liolite/vlitelabel.h>

// A label used as a link: pointing-hand cursor, emits labelClickFinished() when a left click
// is released over it.
class LIOLITE_EXPORT VLiteClickableLabel : public VLiteLabel
{
    Q_OBJECT
public:
    enum UnderlineMode { UnderlineNever = 0, UnderlineOnHover = 1, UnderlineAlways = 2 };

    explicit VLiteClickableLabel(QWidget* parent = nullptr);
    explicit VLiteClickableLabel(const QString& text, QWidget* parent = nullptr);

    void setUnderlineMode(int mode);
    int underlineMode() const;

signals:
    void labelClickFinished();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void updateUnderline();

    int m_underlineMode = UnderlineNever;
    bool m_pressed = false;
    bool m_hovered = false;
};
