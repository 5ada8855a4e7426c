#include "table/vmfiletablecontentview.h"

#include <QVBoxLayout>

VMFileTableContentView::VMFileTableContentView(QWidget *parent)
    : QWidget(parent)
{
    m_layout = new QVBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_layout->setSizeConstraint(QLayout::SetMinimumSize);
}

QVBoxLayout *VMFileTableContentView::boxLayout() const
{
    return m_layout;
}

QSize VMFileTableContentView::sizeHint() const
{
    return QSize(width(), m_layout->sizeHint().height());
}

void VMFileTableContentView::onSigResized(QSize size)
{
    setFixedWidth(size.width());
}
