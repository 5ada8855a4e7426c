#include "table/vmitemloadingwidget.h"

#include <QPainter>
#include <QStyle>
#include <QTimerEvent>

#include "host/liolite.h"

namespace {
const char OriginalMinimumSize[] = "originalMinimumSize";
}

VMItemLoadingWidget::VMItemLoadingWidget(QWidget *parent)
    : QWidget(parent)
{
    const double d = VLiteStyle::dpi();
    const QSize size(int(14 * d * m_dotCount - 8 * d + 2 * d), int(2 * d + 8 * d));
    setMinimumSize(size);
    setProperty(OriginalMinimumSize, size);
}

VMItemLoadingWidget::~VMItemLoadingWidget()
{
    if (m_timerId != -1)
        killTimer(m_timerId);
}

void VMItemLoadingWidget::start()
{
    if (m_timerId != -1)
        return;
    m_step = 0;
    m_timerId = startTimer(300, Qt::CoarseTimer);
}

void VMItemLoadingWidget::stop()
{
    if (m_timerId == -1)
        return;
    killTimer(m_timerId);
    m_timerId = -1;
    update();
}

bool VMItemLoadingWidget::isRunning() const
{
    return m_timerId != -1;
}

int VMItemLoadingWidget::litDot() const
{
    if (m_timerId == -1 || m_step == 0 || m_step > m_dotCount)
        return -1;
    return int(m_step) - 1;
}

void VMItemLoadingWidget::showEvent(QShowEvent *event)
{
    start();
    QWidget::showEvent(event);
}

void VMItemLoadingWidget::hideEvent(QHideEvent *event)
{
    stop();
    QWidget::hideEvent(event);
}

void VMItemLoadingWidget::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timerId) {
        QWidget::timerEvent(event);
        return;
    }
    ++m_step;
    if (m_step > m_pauseTicks + 1 + m_dotCount)
        m_step = 1;
    // The pause ticks after the first one change nothing on screen.
    if (m_step <= m_dotCount + 1)
        update();
}

void VMItemLoadingWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(Qt::NoPen);
    painter.setRenderHint(QPainter::Antialiasing);

    const QRect box = QStyle::alignedRect(Qt::LeftToRight, Qt::AlignHCenter | Qt::AlignVCenter,
                                          property(OriginalMinimumSize).toSize(), contentsRect());
    const QString themeClass = QStringLiteral("VMLoadingItem");
    const QColor lit = VDrawHelper::getColorFromTheme(themeClass, QStringLiteral("background-highlight"),
                                                      QColor(QStringLiteral("#B7BFD0FF")));
    const QColor unlit = VDrawHelper::getColorFromTheme(themeClass, QStringLiteral("background"),
                                                        QColor(QStringLiteral("#D4DBE9FF")));
    const int litIndex = litDot();
    const int y = box.top() + box.height() / 2;
    for (int i = 0; i < int(m_dotCount); ++i) {
        const bool isLit = i == litIndex;
        const int x = int(box.left() + VLiteStyle::dpiScaled(4) + VLiteStyle::dpiScaled(14) * i);
        const int radius = int(VLiteStyle::dpiScaled(isLit ? 4 : 3));
        painter.setBrush(isLit ? lit : unlit);
        painter.drawEllipse(QPoint(x, y), radius, radius);
    }
}
