#include "page/vmclientwidget.h"

#include <QShowEvent>
#include <QVBoxLayout>

#include "host/liolite.h"
#include "page/vmbottomoptionwidget.h"
#include "shell/hostservices.h"
#include "shell/usageevents.h"
#include "table/vmfileoptionwidget.h"

VMClientWidget::VMClientWidget(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("VMClientWidget"));
    m_layout = new QVBoxLayout(this);
    m_layout->setContentsMargins(VLiteStyle::dpiScaledMargins(QMargins(28, 0, 28, 28)));
    m_layout->setSpacing(0);

    m_fileArea = new VMFileOptionWidget(this);
    m_fileArea->applyThemeClass(QStringLiteral("VMStyleWidget"), false);
    m_layout->addWidget(m_fileArea, 1);
    m_layout->addSpacing(int(VLiteStyle::dpiScaled(14)));

    m_bottomOptionWidget = new VMBottomOptionWidget(this);
    m_layout->addWidget(m_bottomOptionWidget, 0);

    connect(m_bottomOptionWidget, &VMBottomOptionWidget::sigStartMerger, m_fileArea,
            &VMFileOptionWidget::onStartMerger);
    connect(m_fileArea, &VMFileOptionWidget::sigSelectedItemCountChange, this,
            &VMClientWidget::onSelectedItemCountChange);
}

VMFileOptionWidget *VMClientWidget::fileArea() const
{
    return m_fileArea;
}

VMBottomOptionWidget *VMClientWidget::bottomOptionWidget() const
{
    return m_bottomOptionWidget;
}

void VMClientWidget::onSelectedItemCountChange(int selected, int total)
{
    Q_UNUSED(total)
    m_bottomOptionWidget->setStartEnabled(selected >= 2);
}

void VMClientWidget::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    sendUsageEvent(QStringLiteral("vas_wordmerge_show"), {{QStringLiteral("src"), startSource()}});
}
