#include "output/vmopenloationwidget.h"

#include <QLabel>

#include "output/vmclouddirwidget.h"
#include "output/vmcustomdirwidget.h"

VMOpenLoationWidget::VMOpenLoationWidget(QWidget *parent)
    : QStackedWidget(parent)
{
    addWidget(new QLabel(this));
    m_customPage = new VMCustomDirWidget(this);
    addWidget(m_customPage);
    m_cloudPage = new VMCloudDirWidget(this);
    addWidget(m_cloudPage);
}

VMCustomDirWidget *VMOpenLoationWidget::customPage() const
{
    return m_customPage;
}

VMCloudDirWidget *VMOpenLoationWidget::cloudPage() const
{
    return m_cloudPage;
}
