#include <liolite/vlitelabel.h>

#include <liolite/vdrawhelper.h>

#include "vlitethemeapplier.h"

#include <QPainter>
#include <QTextDocument>
#include <QStyle>
#include <QStyleOption>

VLiteLabel::VLiteLabel(QWidget* parent)
    : VLiteLabel(QString(), parent)
{
}

VLiteLabel::VLiteLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{
    VLiteThemeApplier::applyDefault(this, QStringLiteral("VLiteLabel"));
}

VLiteLabel::~VLiteLabel() = default;

void VLiteLabel::applyThemeClass(const QString& themeClass, bool cascade)
{
    VLiteThemeApplier::apply(this, themeClass, cascade);
}

QString VLiteLabel::themeClass() const
{
    return VDrawHelper::getObjectThemeClassName(this);
}

void VLiteLabel::setTextAutoElide(bool enable)
{
    if (m_autoElide == enable)
        return;
    m_autoElide = enable;
    updateGeometry();
    update();
}

bool VLiteLabel::textAutoElide() const
{
    return m_autoElide;
}

void VLiteLabel::setTextElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    update();
}

Qt::TextElideMode VLiteLabel::textElideMode() const
{
    return m_elideMode;
}

QString VLiteLabel::displayedText() const
{
    const QString full = text();
    if (!m_autoElide || wordWrap() || textFormat() == Qt::RichText
        || (textFormat() == Qt::AutoText && Qt::mightBeRichText(full)))
        return full;
    const QFontMetrics fm(font());
    const int available = contentsRect().width() - 2 * margin() - qMax(indent(), 0);
    if (fm.horizontalAdvance(full) <= available)
        return full;
    return fm.elidedText(full, textElideMode(), qMax(available, 0));
}

QSize VLiteLabel::minimumSizeHint() const
{
    QSize hint = QLabel::minimumSizeHint();
    if (m_autoElide && !wordWrap()) {
        const QFontMetrics fm(font());
        const QMargins m = contentsMargins();
        hint.setWidth(fm.horizontalAdvance(QStringLiteral("\u2026")) + m.left() + m.right() + 2 * margin());
    }
    return hint;
}

void VLiteLabel::paintEvent(QPaintEvent* event)
{
    const QString shown = displayedText();
    if (shown == text()) {
        QLabel::paintEvent(event);
        return;
    }
    // Draw the shortened text the way QLabel draws plain text, without changing text().
    QPainter painter(this);
    drawFrame(&painter);
    QStyleOption option;
    option.initFrom(this);
    QRect area = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
    style()->drawItemText(&painter, area, QStyle::visualAlignment(layoutDirection(), alignment()),
                          option.palette, isEnabled(), shown, foregroundRole());
}
