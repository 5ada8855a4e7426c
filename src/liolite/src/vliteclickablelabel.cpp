#include <liolite/vliteclickablelabel.h>

#include "vlitethemeapplier.h"

#include <QMouseEvent>

VLiteClickableLabel::VLiteClickableLabel(QWidget* parent)
    : VLiteClickableLabel(QString(), parent)
{
}

VLiteClickableLabel::VLiteClickableLabel(const QString& text, QWidget* parent)
    : VLiteLabel(text, parent)
{
    setCursor(Qt::PointingHandCursor);
    VLiteThemeApplier::applyDefault(this, QStringLiteral("VLiteClickableLabel"));
}

void VLiteClickableLabel::setUnderlineMode(int mode)
{
    m_underlineMode = qBound(int(UnderlineNever), mode, int(UnderlineAlways));
    updateUnderline();
}

int VLiteClickableLabel::underlineMode() const
{
    return m_underlineMode;
}

void VLiteClickableLabel::updateUnderline()
{
    const bool underline = m_underlineMode == UnderlineAlways
                           || (m_underlineMode == UnderlineOnHover && m_hovered && isEnabled());
    QFont f = font();
    if (f.underline() != underline) {
        f.setUnderline(underline);
        setFont(f);
    }
}

void VLiteClickableLabel::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressed = true;
        event->accept();
        return;
    }
    VLiteLabel::mousePressEvent(event);
}

void VLiteClickableLabel::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_pressed) {
        m_pressed = false;
        event->accept();
        if (rect().contains(event->pos()) && isEnabled())
            emit labelClickFinished();
        return;
    }
    VLiteLabel::mouseReleaseEvent(event);
}

void VLiteClickableLabel::enterEvent(QEvent* event)
{
    m_hovered = true;
    updateUnderline();
    VLiteLabel::enterEvent(event);
}

void VLiteClickableLabel::leaveEvent(QEvent* event)
{
    m_hovered = false;
    updateUnderline();
    VLiteLabel::leaveEvent(event);
}
