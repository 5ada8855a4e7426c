#include "table/vmfiletablecontentarea.h"

#include <algorithm>

#include <QCursor>
#include <QDrag>
#include <QDragMoveEvent>
#include <QHBoxLayout>
#include <QLoggingCategory>
#include <QMimeData>
#include <QPointer>
#include <QStyle>
#include <QVBoxLayout>

#include "host/liolite.h"
#include "shell/cappcontroller.h"
#include "shell/stylesheethelpers.h"
#include "shell/usageevents.h"
#include "table/vmfiletablecontentview.h"
#include "table/vmfiletablereorder.h"
#include "table/vmfiletablescrollbar.h"
#include "table/vmfiletablescrollbarmask.h"
#include "table/vmsplitline.h"

Q_LOGGING_CATEGORY(lcContentArea, "vdocumentmerger.table.contentarea", QtWarningMsg)

const char *const VMFileTableContentArea::ItemMimeType = "VMFileTableContentView/Item";

namespace {

void repolish(QWidget *widget)
{
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

} // namespace

VMFileTableContentArea::VMFileTableContentArea(QWidget *parent)
    : QScrollArea(parent)
{
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setAttribute(Qt::WA_StyledBackground);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // A Tab stop of its own (arrow keys scroll the rows), so screen readers need a name for it.
    setAccessibleName(tr("File list"));

    m_view = new VMFileTableContentView(this);
    setWidget(m_view);

    m_dropIndicator = new QWidget(this);
    auto *indicatorLayout = new QHBoxLayout(m_dropIndicator);
    indicatorLayout->setContentsMargins(0, 0, 0, 0);
    indicatorLayout->setSpacing(0);
    indicatorLayout->addSpacing(int(VLiteStyle::dpiScaled(6)));
    indicatorLayout->addWidget(
        new VMSplitLine(m_dropIndicator, int(VLiteStyle::dpiScaled(5)), int(VLiteStyle::dpiScaled(1))));
    indicatorLayout->addSpacing(int(VLiteStyle::dpiScaled(5)));
    m_dropIndicator->hide();

    auto *scrollBar = new VMFileTableScrollBar(Qt::Vertical);
    scrollBar->setAccessibleName(tr("Scroll file list"));
    setVerticalScrollBar(scrollBar);
    m_scrollBarMask = new VMFileTableScrollBarMask(scrollBar, viewport());

    connect(this, &VMFileTableContentArea::sigViewportResized, m_view, &VMFileTableContentView::onSigResized);
    connect(scrollBar, &QScrollBar::rangeChanged, m_scrollBarMask, &VMFileTableScrollBarMask::setRangeAction);
    connect(scrollBar, &VMFileTableScrollBar::stepChanged, m_scrollBarMask, &VMFileTableScrollBarMask::onStepChanged);
    connect(m_scrollBarMask, &QScrollBar::valueChanged, scrollBar, &QScrollBar::setValue);
    connect(scrollBar, &QScrollBar::valueChanged, m_scrollBarMask, &QScrollBar::setValue);
    connect(CAppController::instance(), &CAppController::sigSkinChanged, this,
            &VMFileTableContentArea::onResetStyleSheet);

    onResetStyleSheet();
}

void VMFileTableContentArea::addItem(QWidget *row)
{
    if (!row || row == m_dropIndicator)
        return;
    const int before = itemCount();
    const QList<QWidget *> rows = items();
    const QList<QWidget *> lastStops = rows.isEmpty() ? QList<QWidget *>() : tabStops(rows.last());
    m_view->boxLayout()->addWidget(row);
    chainTabOrder(lastStops.isEmpty() ? this : lastStops.last(), row);
    scheduleViewAdjust();
    const int after = itemCount();
    if (after == before)
        return;
    emit sigItemAdded(row);
    emit sigCountChange(after);
}

void VMFileTableContentArea::removeItem(QWidget *row)
{
    if (!row || row == m_dropIndicator || m_view->boxLayout()->indexOf(row) < 0)
        return;
    row->deleteLater();
    const int before = itemCount();
    m_view->boxLayout()->removeWidget(row);
    row->hide();
    scheduleViewAdjust();
    const int after = itemCount();
    if (after == before)
        return;
    emit sigItemRemoved(row);
    emit sigCountChange(after);
}

int VMFileTableContentArea::itemCount() const
{
    const int entries = m_view->boxLayout()->count();
    return dropIndicatorIndex() >= 0 ? entries - 1 : entries;
}

QWidget *VMFileTableContentArea::itemAt(int index) const
{
    if (index < 0 || index >= itemCount())
        return nullptr;
    const int indicator = dropIndicatorIndex();
    const int layoutIndex = indicator >= 0 && indicator <= index ? index + 1 : index;
    return m_view->boxLayout()->itemAt(layoutIndex)->widget();
}

QList<QWidget *> VMFileTableContentArea::items() const
{
    const QVBoxLayout *layout = m_view->boxLayout();
    QList<QWidget *> result;
    result.reserve(layout->count());
    for (int i = 0; i < layout->count(); ++i) {
        QWidget *widget = layout->itemAt(i)->widget();
        if (widget && widget != m_dropIndicator)
            result.append(widget);
    }
    return result;
}

void VMFileTableContentArea::sortItems(const std::function<bool(QWidget *, QWidget *)> &lessThan)
{
    takeDropIndicator();
    QVBoxLayout *layout = m_view->boxLayout();
    QVector<QWidget *> widgets;
    widgets.reserve(layout->count());
    while (QLayoutItem *item = layout->takeAt(0)) {
        if (item->widget())
            widgets.append(item->widget());
        delete item;
    }
    std::sort(widgets.begin(), widgets.end(), lessThan);
    for (QWidget *widget : qAsConst(widgets))
        layout->addWidget(widget);
    chainTabOrderOfAllRows();
    if (!widgets.isEmpty())
        emit sigItemsOrderChanged();
}

QWidget *VMFileTableContentArea::rowForPayload(const QMimeData *data) const
{
    if (!data || !data->hasFormat(QLatin1String(ItemMimeType)))
        return nullptr;
    bool ok = false;
    const quintptr address = data->data(QLatin1String(ItemMimeType)).toULongLong(&ok, 10);
    if (!ok || address == 0)
        return nullptr;
    // Compared as numbers: a payload from elsewhere is never turned into a pointer.
    const QList<QWidget *> rows = items();
    const auto found = std::find_if(rows.cbegin(), rows.cend(), [address](const QWidget *row) {
        return reinterpret_cast<quintptr>(row) == address;
    });
    return found != rows.cend() ? *found : nullptr;
}

int VMFileTableContentArea::dropIndexAt(const QPoint &point) const
{
    const QVBoxLayout *layout = m_view->boxLayout();
    const QRect contents = m_view->contentsRect();
    QVector<VMFileTableReorder::Entry> entries;
    entries.reserve(layout->count());
    for (int i = 0; i < layout->count(); ++i) {
        const QWidget *widget = layout->itemAt(i)->widget();
        const QRect geometry = widget ? widget->geometry() : QRect();
        entries.append({geometry, widget && geometry.intersects(contents)});
    }
    return VMFileTableReorder::dropIndex(entries, dropIndicatorIndex(), m_view->mapFrom(this, point).y());
}

int VMFileTableContentArea::dropIndicatorIndex() const
{
    return m_view->boxLayout()->indexOf(m_dropIndicator);
}

void VMFileTableContentArea::moveDropIndicator(int rowIndex)
{
    if (rowIndex == dropIndicatorIndex())
        return;
    takeDropIndicator();
    QVBoxLayout *layout = m_view->boxLayout();
    if (rowIndex < 0 || rowIndex > layout->count())
        return;
    layout->insertWidget(rowIndex, m_dropIndicator);
    m_dropIndicator->show();
}

bool VMFileTableContentArea::dropRowAtIndicator(QWidget *row)
{
    QVBoxLayout *layout = m_view->boxLayout();
    const int indicator = dropIndicatorIndex();
    takeDropIndicator();
    const int at = VMFileTableReorder::reinsertIndex(indicator, layout->count(), row ? layout->indexOf(row) : -1);
    if (at < 0)
        return false;
    layout->removeWidget(row);
    layout->insertWidget(at, row);
    chainTabOrderOfAllRows();
    emit sigItemsOrderChanged();
    return true;
}

void VMFileTableContentArea::startDrag()
{
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("move")}});
    auto *row = qobject_cast<QWidget *>(sender());
    if (!row || m_view->boxLayout()->indexOf(row) < 0 || row == m_dropIndicator) {
        qCWarning(lcContentArea) << "drag requested by something that is not a row of this list";
        return;
    }

    row->setProperty("action", QStringLiteral("drag"));
    repolish(row);
    const QPixmap picture = row->grab();
    row->setProperty("action", QVariant());
    repolish(row);

    auto *payload = new QMimeData;
    payload->setData(QLatin1String(ItemMimeType), QByteArray::number(quint64(reinterpret_cast<quintptr>(row))));
    auto *drag = new QDrag(this);
    drag->setMimeData(payload);
    drag->setPixmap(picture);
    drag->setProperty("_q_platform_WindowsDragQt4CompatibleCursor", true);
    drag->setHotSpot(row->mapFromGlobal(QCursor::pos()));

    QPointer<QWidget> guard(row);
    if (drag->exec(Qt::MoveAction) == Qt::MoveAction)
        return;
    // The nested event loop may have removed the row meanwhile.
    if (!guard || m_view->boxLayout()->indexOf(row) < 0) {
        takeDropIndicator();
        return;
    }
    dropRowAtIndicator(row);
}

void VMFileTableContentArea::onResetStyleSheet()
{
    const QString itemClass = QStringLiteral("VMFifleTableContentItem");
    const QString areaSheet = QStringLiteral("VMFileTableContentArea{background:transparent;border:none; border-top: 1px "
                                             "solid %1;}VMFileTableContentView{background:transparent;}")
                                  .arg(themeColorRgba(QStringLiteral("VMFileTableContentArea"),
                                                      QStringLiteral("border-top"), QColor(QStringLiteral("#D7D9DE"))));
    const QString rowSheet =
        QStringLiteral("VMFifleTableContentItem {background:%1;border-bottom: 1px solid %4}"
                       "VMFifleTableContentItem:hover {background:%2;}"
                       "VMFifleTableContentItem[action=\"drag\"] {background:%3; border-radius: 2px; border: 1px solid %4;}")
            .arg(themeColorRgba(itemClass, QStringLiteral("background"), QColor(QStringLiteral("#FFFFFF"))),
                 themeColorRgba(itemClass, QStringLiteral("background-hover"), QColor(QStringLiteral("#33C6CED6"))),
                 themeColorRgba(itemClass, QStringLiteral("background-drag"), QColor(QStringLiteral("#FFFFFFFF"))),
                 themeColorRgba(itemClass, QStringLiteral("border"), QColor(QStringLiteral("#D7D9DE"))));
    setStyleSheet(dpiScaledStyleSheet(areaSheet + rowSheet));
    m_scrollBarMask->setStyleSheet(
        dpiScaledStyleSheet(scrollBarStyleSheet(QStringLiteral("transparent"), QStringLiteral("QScrollArea"), 10, 4, 4, 3)));
    m_scrollBarMask->resize(m_scrollBarMask->sizeHint().width(), m_scrollBarMask->height());
}

void VMFileTableContentArea::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    QRect geometry = viewport()->contentsRect();
    geometry.setLeft(geometry.right() + 1 - m_scrollBarMask->width());
    m_scrollBarMask->setGeometry(geometry);
    m_scrollBarMask->raise();
    emit sigViewportResized(viewport()->size());
}

void VMFileTableContentArea::dragEnterEvent(QDragEnterEvent *event)
{
    // Dropped files are left to the parents.
    if (event->mimeData()->hasFormat(QLatin1String(ItemMimeType)))
        event->acceptProposedAction();
    else
        event->ignore();
}

void VMFileTableContentArea::dragMoveEvent(QDragMoveEvent *event)
{
    QWidget *row = rowForPayload(event->mimeData());
    if (!row) {
        event->ignore();
        return;
    }
    const QVBoxLayout *layout = m_view->boxLayout();
    const int indicator = dropIndicatorIndex();
    int source = layout->indexOf(row);
    if (indicator >= 0 && indicator <= source)
        --source;
    const int target = dropIndexAt(event->pos());
    if (target < 0)
        return;
    moveDropIndicator(target);
    scrollWhileDragging(row, source, target, event->pos().y());
}

void VMFileTableContentArea::takeDropIndicator()
{
    if (dropIndicatorIndex() < 0)
        return;
    m_dropIndicator->hide();
    m_view->boxLayout()->removeWidget(m_dropIndicator);
    scheduleViewAdjust();
}

void VMFileTableContentArea::scheduleViewAdjust()
{
    // Once per batch: resizing the view lays out every row, so doing it for each of 100
    // rows added or removed in one go would hold the GUI thread for far too long.
    if (m_viewAdjustPending)
        return;
    m_viewAdjustPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_viewAdjustPending = false;
            m_view->adjustSize();
        },
        Qt::QueuedConnection);
}

void VMFileTableContentArea::scrollWhileDragging(QWidget *row, int sourceIndex, int dropIndex, int y)
{
    const QVBoxLayout *layout = m_view->boxLayout();
    const int target = VMFileTableReorder::autoScrollIndex(y, row->height() / 2, rect().bottom(), sourceIndex,
                                                           dropIndex, layout->count());
    if (target < 0)
        return;
    QWidget *widget = layout->itemAt(target)->widget();
    if (!widget)
        return;
    if (widget == m_dropIndicator && target == layout->count() - 1) {
        m_scrollBarMask->setValue(m_scrollBarMask->maximum());
        return;
    }
    const QRect mapped(widget->mapTo(this, QPoint(0, 0)), widget->size());
    if (!rect().contains(mapped))
        ensureWidgetVisible(widget, 50, 50);
}

QList<QWidget *> VMFileTableContentArea::tabStops(QWidget *row)
{
    // The row's columns in their layout order; within a column, its controls as they were made.
    QList<QWidget *> stops;
    QLayout *layout = row->layout();
    for (int i = 0; layout && i < layout->count(); ++i) {
        QWidget *column = layout->itemAt(i)->widget();
        if (!column)
            continue;
        QList<QWidget *> controls = column->findChildren<QWidget *>();
        controls.prepend(column);
        for (QWidget *control : qAsConst(controls)) {
            if ((control->focusPolicy() & Qt::TabFocus) && !control->focusProxy())
                stops.append(control);
        }
    }
    return stops;
}

QWidget *VMFileTableContentArea::chainTabOrder(QWidget *previous, QWidget *row)
{
    for (QWidget *stop : tabStops(row)) {
        QWidget::setTabOrder(previous, stop);
        previous = stop;
    }
    return previous;
}

void VMFileTableContentArea::chainTabOrderOfAllRows()
{
    QWidget *previous = this;
    for (QWidget *row : items())
        previous = chainTabOrder(previous, row);
}
