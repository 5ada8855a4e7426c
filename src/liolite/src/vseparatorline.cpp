#include <liolite/vseparatorline.h>

#include <liolite/vdrawhelper.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitethemenotifier.h>

#include <QPainter>
#include <QVariant>

VSeparatorLine::VSeparatorLine(QWidget* parent, Qt::Orientation orientation)
    : QWidget(parent)
    , m_orientation(orientation)
{
    setProperty(VDrawHelper::ObjectThemeClassName, QStringLiteral("VSeparatorLine"));
    if (orientation == Qt::Horizontal)
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    else
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    connect(VLiteStyle::notifier(), &VLiteThemeNotifier::themeChanged, this,
            [this] { update(); });
}

void VSeparatorLine::setLineWidth(int width)
{
    m_lineWidth = qMax(1, width);
    updateGeometry();
    update();
}

int VSeparatorLine::lineWidth() const
{
    return m_lineWidth;
}

Qt::Orientation VSeparatorLine::orientation() const
{
    return m_orientation;
}

QSize VSeparatorLine::sizeHint() const
{
    const int thickness = qMax(1, int(VLiteStyle::dpiScaled(m_lineWidth)));
    return m_orientation == Qt::Horizontal ? QSize(thickness * 8, thickness) : QSize(thickness, thickness * 8);
}

void VSeparatorLine::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const QString cls = VDrawHelper::getObjectThemeClassName(this, QStringLiteral("VSeparatorLine"));
    const QColor colour = VDrawHelper::getColorFromTheme(cls, QString::fromLatin1(VDrawHelper::Prop_Content),
                                                         QColor("#D7D9DE"));
    const int thickness = qMax(1, int(VLiteStyle::dpiScaled(m_lineWidth)));
    QPainter painter(this);
    const QRect r = rect();
    if (m_orientation == Qt::Horizontal) {
        const int t = qMin(thickness, r.height());
        painter.fillRect(QRect(r.left(), r.top() + (r.height() - t) / 2, r.width(), t), colour);
    } else {
        const int t = qMin(thickness, r.width());
        painter.fillRect(QRect(r.left() + (r.width() - t) / 2, r.top(), t, r.height()), colour);
    }
}
