#include "table/vmpagessubitem.h"

#include <QHBoxLayout>
#include <QStackedLayout>

#include "host/liolite.h"

VMPagesSubItem::VMPagesSubItem(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    // The column's width, unless "read fail" and the reload button need more (wide fonts,
    // longer translations): then the row gives it the room rather than clip the text.
    setMinimumWidth(int(VLiteStyle::dpiScaled(68)));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    m_stack = new QStackedLayout(this);
    m_stack->setContentsMargins(0, 0, 0, 0);
    m_stack->setSpacing(0);
    m_stack->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);

    m_countLabel = new VLiteLabel(QStringLiteral("-"), this);
    m_countLabel->setAlignment(Qt::AlignCenter);
    m_countLabel->applyThemeClass(QStringLiteral("VMStyleLabel"));
    m_stack->addWidget(m_countLabel);

    auto *failPage = new QWidget(this);
    auto *failLayout = new QHBoxLayout(failPage);
    failLayout->setContentsMargins(0, 0, 0, 0);
    failLayout->setSpacing(int(VLiteStyle::dpiScaled(4)));
    m_readFailLabel = new VLiteLabel(tr("read fail"), failPage);
    m_readFailLabel->setAlignment(Qt::AlignCenter);
    m_readFailLabel->applyThemeClass(QStringLiteral("VMReadFail_Label"));
    QString reasons = tr("Possible reasons:");
    const QStringList reasonList{tr("ZYL restrict editing"), tr("Encrypted document"), tr("Deleted, renamed or moved")};
    for (int i = 0; i < reasonList.size(); ++i)
        reasons += QStringLiteral("\n") + QStringLiteral("%1. %2").arg(i + 1).arg(reasonList.at(i));
    m_readFailLabel->setToolTip(reasons);
    failLayout->addWidget(m_readFailLabel);

    m_reloadButton = new VLiteButton(failPage);
    m_reloadButton->setFixedSize(VLiteStyle::dpiScaledSize(16, 16));
    m_reloadButton->setIconSize(VLiteStyle::dpiScaledSize(16, 16));
    m_reloadButton->setToolTip(tr("reload"));
    m_reloadButton->setAccessibleName(m_reloadButton->toolTip());
    m_reloadButton->setIcon(VDrawHelper::loadIcon(QStringLiteral("vmreload_normal;vmreload_hover;vmreload_click;")));
    failLayout->addWidget(m_reloadButton);
    m_stack->addWidget(failPage);

    connect(m_reloadButton, &VLiteButton::clicked, this, &VMPagesSubItem::sigReload);
}

void VMPagesSubItem::setCurrentIndex(int index)
{
    m_stack->setCurrentIndex(index);
}

int VMPagesSubItem::currentIndex() const
{
    return m_stack->currentIndex();
}

VLiteLabel *VMPagesSubItem::countLabel() const
{
    return m_countLabel;
}

VLiteLabel *VMPagesSubItem::readFailLabel() const
{
    return m_readFailLabel;
}

VLiteButton *VMPagesSubItem::reloadButton() const
{
    return m_reloadButton;
}
