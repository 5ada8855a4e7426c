#include "table/vmfiletableheader.h"

#include <QHBoxLayout>

#include "host/liolite.h"
#include "table/vmcheckbox.h"
#include "table/vmsortstatebutton.h"
#include "table/vmtableheadernameitem.h"

namespace {

VLiteLabel *columnLabel(const QString &text, int width, QWidget *parent)
{
    auto *label = new VLiteLabel(text, parent);
    label->applyThemeClass(QStringLiteral("VMStyleLabel"));
    label->setAlignment(Qt::AlignCenter);
    label->setFixedWidth(int(VLiteStyle::dpiScaled(width)));
    return label;
}

} // namespace

VMFileTableHeader::VMFileTableHeader(QWidget *parent)
    : QWidget(parent)
{
    setFixedHeight(int(VLiteStyle::dpiScaled(40)));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(int(VLiteStyle::dpiScaled(19)), 0, int(VLiteStyle::dpiScaled(19)), 0);
    layout->setSpacing(0);

    const int columnSpacing = int(VLiteStyle::dpiScaled(50));
    m_nameItem = new VMTableHeaderNameItem(this);
    layout->addWidget(m_nameItem, 1);
    // "page count" is wider than its column in most fonts: the label borrows room from the
    // spacing on both sides and stays centred over the column.
    const int borrowed = 20;
    layout->addWidget(columnLabel(tr("page count"), 68 + 2 * borrowed, this));
    layout->addSpacing(int(VLiteStyle::dpiScaled(50 - borrowed)));
    layout->addWidget(columnLabel(tr("Output range"), 178, this));
    layout->addSpacing(columnSpacing);
    layout->addWidget(columnLabel(tr("operation"), 88, this));

    connect(m_nameItem->checkBox(), &VMCheckBox::clicked, this, &VMFileTableHeader::sigSelectCkbClicked);
    connect(m_nameItem->invertSelectionLink(), &VLiteClickableLabel::labelClickFinished, this,
            &VMFileTableHeader::sigInvertSelectionClicked);
    connect(m_nameItem->sortButton(), &VMSortStateButton::sortStateClick, this,
            &VMFileTableHeader::sigSortButtonClicked);
}

void VMFileTableHeader::setCheckState(Qt::CheckState state)
{
    m_nameItem->checkBox()->setCheckState(state);
}

Qt::CheckState VMFileTableHeader::checkState() const
{
    return m_nameItem->checkBox()->checkState();
}

void VMFileTableHeader::setTristate(bool tristate)
{
    m_nameItem->checkBox()->setTristate(tristate);
}

VMTableHeaderNameItem *VMFileTableHeader::nameItem() const
{
    return m_nameItem;
}
