#include "output/vmopenloationwidget.h"

#include <QLabel>

#include "output/vmcustomdirwidget.h"

VMOpenLoationWidget::VMOpenLoationWidget(QWidget *parent)
    : QStackedWidget(parent)
{
    addWidget(new QLabel(this));
    m_customPage = new VMCustomDirWidget(this);
    addWidget(m_customPage);
}

VMCustomDirWidget *VMOpenLoationWidget::customPage() const
{
    return m_customPage;
}
