#include "table/vmsortstatebutton.h"

VMSortStateButton::VMSortStateButton(QWidget *parent)
    : VLiteButton(parent)
{
    setIcon(VDrawHelper::loadIcon(QStringLiteral("vmsort_button_normal;")));
    connect(this, &VLiteButton::clicked, this, &VMSortStateButton::onClicked);
}

void VMSortStateButton::setSortState(int state)
{
    m_sortState = state;
    switch (state) {
    case 0:
        setIcon(VDrawHelper::loadIcon(QStringLiteral("vmsort_button_normal;")));
        break;
    case 1:
        setIcon(VDrawHelper::loadIcon(QStringLiteral("vmsort_button_asce;")));
        break;
    case 2:
        setIcon(VDrawHelper::loadIcon(QStringLiteral("vmsort_button_desc;")));
        break;
    default:
        break;
    }
}

int VMSortStateButton::sortState() const
{
    return m_sortState;
}

void VMSortStateButton::onClicked()
{
    const int next = m_sortState == 0 ? 1 : m_sortState == 1 ? 2 : 0;
    setSortState(next);
    emit sortStateClick(m_sortState);
}
