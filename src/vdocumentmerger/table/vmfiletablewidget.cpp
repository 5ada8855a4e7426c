#include "table/vmfiletablewidget.h"

#include <algorithm>

#include <QFileInfo>
#include <QVariant>
#include <QVBoxLayout>

#include "shell/usageevents.h"
#include "table/vmfifletablecontentitem.h"
#include "table/vmfiletablecontentarea.h"
#include "table/vmfiletableheader.h"
#include "table/vmfiletablesort.h"

VMFileTableWidget::VMFileTableWidget(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_header = new VMFileTableHeader(this);
    m_contentArea = new VMFileTableContentArea(this);
    layout->addWidget(m_header);
    layout->addWidget(m_contentArea);

    connect(m_header, &VMFileTableHeader::sigSelectCkbClicked, this, &VMFileTableWidget::onHeaderSelectClicked);
    connect(m_header, &VMFileTableHeader::sigInvertSelectionClicked, this,
            &VMFileTableWidget::onInvertSelectionClicked);
    connect(m_header, &VMFileTableHeader::sigSortButtonClicked, this, &VMFileTableWidget::onSortClicked);
    connect(m_contentArea, &VMFileTableContentArea::sigCountChange, this, &VMFileTableWidget::onListViewCountChange);
    connect(m_contentArea, &VMFileTableContentArea::sigItemAdded, this, &VMFileTableWidget::onItemAdded);
    connect(m_contentArea, &VMFileTableContentArea::sigItemRemoved, this, &VMFileTableWidget::onItemRemoved);
    connect(m_contentArea, &VMFileTableContentArea::sigItemsOrderChanged, this,
            &VMFileTableWidget::sigItemsOrderChanged);
}

VMFifleTableContentItem *VMFileTableWidget::addFile(const QString &path)
{
    // Built inside the list's view: reparenting it there afterwards would restyle every
    // widget of the row a second time under the list's style sheet.
    auto *item = new VMFifleTableContentItem(m_contentArea->widget());
    item->setFilePath(path);
    item->setChecked(m_newItemChecked);
    attachItem(item);
    return item;
}

void VMFileTableWidget::attachItem(VMFifleTableContentItem *item)
{
    if (!item || !m_header)
        return;
    item->setProperty("id", QVariant::fromValue<quint64>(m_nextId++));
    m_contentArea->addItem(item);
    connect(item, &VMFifleTableContentItem::sigCkbClicked, this, &VMFileTableWidget::onContentItemCkbClicked);
    connect(item, &VMFifleTableContentItem::sigCkbStateChanged, this,
            &VMFileTableWidget::onContentItemCkbStateChanged);
    connect(item, &VMFifleTableContentItem::sigStartDrag, m_contentArea, &VMFileTableContentArea::startDrag);
    connect(item, &VMFifleTableContentItem::sigDelete, this, &VMFileTableWidget::onFileItemDel);
    connect(item, &VMFifleTableContentItem::sigReload, this, &VMFileTableWidget::onItemReload);
}

int VMFileTableWidget::itemCount() const
{
    return m_contentArea->itemCount();
}

VMFifleTableContentItem *VMFileTableWidget::itemAt(int index) const
{
    return qobject_cast<VMFifleTableContentItem *>(m_contentArea->itemAt(index));
}

QList<VMFifleTableContentItem *> VMFileTableWidget::rows() const
{
    QList<VMFifleTableContentItem *> result;
    const QList<QWidget *> items = m_contentArea->items();
    result.reserve(items.size());
    for (QWidget *widget : items) {
        if (auto *item = qobject_cast<VMFifleTableContentItem *>(widget))
            result.append(item);
    }
    return result;
}

VMFifleTableContentItem *VMFileTableWidget::findItem(const QString &path) const
{
    const QFileInfo wanted(path);
    for (VMFifleTableContentItem *item : rows()) {
        if (QFileInfo(item->filePath()) == wanted)
            return item;
    }
    return nullptr;
}

void VMFileTableWidget::itemsForPaths(const QStringList &paths, QList<VMFifleTableContentItem *> &out) const
{
    for (VMFifleTableContentItem *item : rows()) {
        if (paths.contains(item->filePath()))
            out.append(item);
    }
}

void VMFileTableWidget::checkedItems(QList<VMFifleTableContentItem *> &out) const
{
    for (VMFifleTableContentItem *item : rows()) {
        if (item->isChecked())
            out.append(item);
    }
}

int VMFileTableWidget::checkedCount() const
{
    const QList<VMFifleTableContentItem *> all = rows();
    return int(std::count_if(all.cbegin(), all.cend(), [](const VMFifleTableContentItem *item) {
        return item->isChecked();
    }));
}

void VMFileTableWidget::removeSelected()
{
    QList<VMFifleTableContentItem *> checked;
    checkedItems(checked);
    for (VMFifleTableContentItem *item : qAsConst(checked))
        m_contentArea->removeItem(item);
    emit sigSlectedItemRemoved();
}

void VMFileTableWidget::updateHeaderCheckState()
{
    const int total = itemCount();
    const int checked = checkedCount();
    Qt::CheckState state = Qt::Unchecked;
    if (checked > 0)
        state = checked == total ? Qt::Checked : Qt::PartiallyChecked;
    m_header->setCheckState(state);
    emit sigSelectedItemCountChange(checked, total);
}

VMFileTableHeader *VMFileTableWidget::header() const
{
    return m_header;
}

VMFileTableContentArea *VMFileTableWidget::contentArea() const
{
    return m_contentArea;
}

void VMFileTableWidget::onHeaderSelectClicked(bool checked)
{
    m_header->setTristate(false);
    for (VMFifleTableContentItem *item : rows())
        item->setChecked(checked);
    m_header->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    emit sigBatchCheckClicked();
}

void VMFileTableWidget::onInvertSelectionClicked()
{
    for (VMFifleTableContentItem *item : rows())
        item->setChecked(!item->isChecked());
    updateHeaderCheckState();
    emit sigBatchCheckClicked();
}

void VMFileTableWidget::onSortClicked(int state)
{
    QString type;
    switch (state) {
    case 0:
        type = QStringLiteral("recover");
        break;
    case 1:
        type = QStringLiteral("positive ");
        break;
    case 2:
        type = QStringLiteral("reverse");
        break;
    default:
        break;
    }
    sendClickEvent({{QStringLiteral("type"), type}});
    m_contentArea->sortItems(
        [state](QWidget *a, QWidget *b) { return VMFileTableSort::rowLess(state, a, b); });
}

void VMFileTableWidget::onContentItemCkbClicked(bool checked)
{
    if (auto *item = qobject_cast<VMFifleTableContentItem *>(sender()))
        emit sigItemCheckClicked(item, checked);
}

void VMFileTableWidget::onContentItemCkbStateChanged(int state)
{
    auto *item = qobject_cast<VMFifleTableContentItem *>(sender());
    if (!item)
        return;
    updateHeaderCheckState();
    emit sigItemCkbStateChanged(item, state);
}

void VMFileTableWidget::onFileItemDel()
{
    auto *item = qobject_cast<VMFifleTableContentItem *>(sender());
    if (!item)
        return;
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("delete")}});
    m_contentArea->removeItem(item);
    emit sigFileDel(item);
}

void VMFileTableWidget::onListViewCountChange(int count)
{
    emit sigItemCountChange(count);
}

void VMFileTableWidget::onItemAdded(QWidget *item)
{
    auto *row = qobject_cast<VMFifleTableContentItem *>(item);
    if (!row)
        return;
    updateHeaderCheckState();
    emit sigItemAdded(row);
}

void VMFileTableWidget::onItemRemoved(QWidget *item)
{
    auto *row = qobject_cast<VMFifleTableContentItem *>(item);
    if (!row)
        return;
    updateHeaderCheckState();
    emit sigItemRemoved(row);
}

void VMFileTableWidget::onItemReload()
{
    if (auto *item = qobject_cast<VMFifleTableContentItem *>(sender()))
        emit sigItemReload(item);
}
