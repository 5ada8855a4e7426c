#include "table/vmtableheadernameitem.h"

#include <QHBoxLayout>

#include "host/liolite.h"
#include "table/vmcheckbox.h"
#include "table/vmsortstatebutton.h"

VMTableHeaderNameItem::VMTableHeaderNameItem(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    m_checkBox = new VMCheckBox(this);
    m_checkBox->setFixedSize(VLiteStyle::dpiScaledSize(16, 16));
    m_checkBox->setAccessibleName(tr("Select all"));
    layout->addWidget(m_checkBox);
    layout->addSpacing(int(VLiteStyle::dpiScaled(4)));

    m_nameLabel = new VLiteLabel(tr("File name"), this);
    m_nameLabel->applyThemeClass(QStringLiteral("VMStyleLabel"));
    m_nameLabel->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    layout->addWidget(m_nameLabel);
    layout->addSpacing(int(VLiteStyle::dpiScaled(4)));

    m_sortButton = new VMSortStateButton(this);
    m_sortButton->setFixedSize(VLiteStyle::dpiScaledSize(20, 20));
    m_sortButton->setIconSize(VLiteStyle::dpiScaledSize(16, 16));
    m_sortButton->setToolTip(tr("Sort by file name"));
    m_sortButton->setAccessibleName(m_sortButton->toolTip());
    m_sortButton->applyThemeClass(QStringLiteral("VLiteButton_Status"));
    layout->addWidget(m_sortButton);
    layout->addSpacing(int(VLiteStyle::dpiScaled(8)));

    m_separator = new VSeparatorLine(this, Qt::Vertical);
    m_separator->setLineWidth(1);
    m_separator->setFixedSize(VLiteStyle::dpiScaledSize(1, 12));
    layout->addWidget(m_separator);
    layout->addSpacing(int(VLiteStyle::dpiScaled(8)));

    m_invertSelection = new VLiteClickableLabel(tr("Invert Selection"), this);
    m_invertSelection->applyThemeClass(QStringLiteral("VMTableHeaderInvertSelect"));
    m_invertSelection->setUnderlineMode(VLiteClickableLabel::UnderlineOnHover);
    layout->addWidget(m_invertSelection);
    layout->addStretch();

    m_separator->hide();
    m_invertSelection->hide();

    connect(m_checkBox, &VMCheckBox::stateChanged, this, &VMTableHeaderNameItem::onCkbStateChange);
}

VMCheckBox *VMTableHeaderNameItem::checkBox() const
{
    return m_checkBox;
}

VMSortStateButton *VMTableHeaderNameItem::sortButton() const
{
    return m_sortButton;
}

VLiteClickableLabel *VMTableHeaderNameItem::invertSelectionLink() const
{
    return m_invertSelection;
}

void VMTableHeaderNameItem::onCkbStateChange(int state)
{
    const bool partlyChecked = state == Qt::PartiallyChecked;
    m_separator->setVisible(partlyChecked);
    m_invertSelection->setVisible(partlyChecked);
}
