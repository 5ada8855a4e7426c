#include "table/vmoutputrangesubitem.h"

#include <QStackedLayout>

#include "host/liolite.h"
#include "table/vmitemloadingwidget.h"
#include "table/vmrangeoperatewidget.h"

VMOutputRangeSubItem::VMOutputRangeSubItem(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    setFixedWidth(int(VLiteStyle::dpiScaled(178)));
    m_stack = new QStackedLayout(this);
    m_stack->setContentsMargins(0, 0, 0, 0);
    m_stack->setSpacing(0);
    m_stack->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);

    m_loadingWidget = new VMItemLoadingWidget(this);
    m_stack->addWidget(m_loadingWidget);
    m_rangeWidget = new VMRangeOperateWidget(this);
    m_stack->addWidget(m_rangeWidget);
}

void VMOutputRangeSubItem::setCurrentIndex(int index)
{
    m_stack->setCurrentIndex(index);
}

int VMOutputRangeSubItem::currentIndex() const
{
    return m_stack->currentIndex();
}

VMItemLoadingWidget *VMOutputRangeSubItem::loadingWidget() const
{
    return m_loadingWidget;
}

VMRangeOperateWidget *VMOutputRangeSubItem::rangeWidget() const
{
    return m_rangeWidget;
}
