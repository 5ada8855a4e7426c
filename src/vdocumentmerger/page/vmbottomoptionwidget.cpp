#include "page/vmbottomoptionwidget.h"

#include <QHBoxLayout>
#include <QSpacerItem>

#include "host/liolite.h"
#include "output/vmoutputoptionwidget.h"

VMBottomOptionWidget::VMBottomOptionWidget(QWidget *parent)
    : QWidget(parent)
{
    m_layout = new QHBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_outputOptionWidget = new VMOutputOptionWidget(this);
    m_layout->addWidget(m_outputOptionWidget);
    m_layout->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));

    m_startButton = new VLiteButton(this);
    m_startButton->setObjectName(QStringLiteral("VMStartMergeButton"));
    m_startButton->setFixedSize(VLiteStyle::dpiScaledSize(124, 40));
    m_startButton->setIcon(VDrawHelper::loadIcon(
        QStringLiteral("vmstart_merge_normal;vmstart_merge_hover;vmstart_merge_click;vmstart_merge_disable;")));
    m_startButton->setText(tr("start merge"));
    m_startButton->setAccessibleName(m_startButton->text());
    m_startButton->setEnabled(false);
    m_layout->addWidget(m_startButton, 0, Qt::AlignBottom);

    connect(m_startButton, &VLiteButton::clicked, this, &VMBottomOptionWidget::sigStartMerger);
}

void VMBottomOptionWidget::setStartEnabled(bool enabled)
{
    m_startButton->setEnabled(enabled);
}
