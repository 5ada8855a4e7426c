#include "table/vmelidedtextlabel.h"

#include <QFontMetrics>

VMElidedTextLabel::VMElidedTextLabel(QWidget *parent)
    : VLiteLabel(parent)
    , m_elideMode(VLiteLabel::textElideMode())
{
    // Only for the base's minimum size hint: a layout may then shrink the label below its text.
    setTextAutoElide(true);
}

void VMElidedTextLabel::setText(const QString &text)
{
    m_fullText = text;
    QLabel::setText(elided());
}

QString VMElidedTextLabel::fullText() const
{
    return m_fullText;
}

void VMElidedTextLabel::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
}

Qt::TextElideMode VMElidedTextLabel::textElideMode() const
{
    return m_elideMode;
}

int VMElidedTextLabel::textWidth() const
{
    return QFontMetrics(font()).horizontalAdvance(m_fullText);
}

void VMElidedTextLabel::paintEvent(QPaintEvent *event)
{
    const QString shown = elided();
    if (shown != text())
        QLabel::setText(shown);
    VLiteLabel::paintEvent(event);
}

QString VMElidedTextLabel::elided() const
{
    const QFontMetrics metrics(font());
    const int w = width();
    if (metrics.horizontalAdvance(m_fullText) <= w)
        return m_fullText;
    return metrics.elidedText(m_fullText, m_elideMode, w);
}
