#include "table/vmfilenamesubitem.h"

#include <QFileInfo>
#include <QHBoxLayout>

#include "host/liolite.h"
#include "table/vmcheckbox.h"
#include "table/vmelidedtextlabel.h"

VMFileNameSubItem::VMFileNameSubItem(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(int(VLiteStyle::dpiScaled(4)));

    m_checkBox = new VMCheckBox(this);
    m_checkBox->setFixedSize(VLiteStyle::dpiScaledSize(16, 16));
    layout->addWidget(m_checkBox);

    m_nameLabel = new VMElidedTextLabel(this);
    m_nameLabel->setElideMode(Qt::ElideMiddle);
    // Right-to-left names too start at the column's left edge, under the header label.
    m_nameLabel->setAlignment(Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter);
    m_nameLabel->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_nameLabel->setMaximumWidth(int(VLiteStyle::dpiScaled(294)));
    m_nameLabel->setFixedHeight(int(VLiteStyle::dpiScaled(22)));
    m_nameLabel->applyThemeClass(QStringLiteral("VMCommonText02_Label"));
    // The label takes the room up to its maximum width and the rest goes to the right: the
    // box layout would otherwise centre the check box and the name in wider slots, off the
    // header's column.
    layout->addWidget(m_nameLabel, 1);
    layout->addStretch();

    connect(m_checkBox, &VMCheckBox::clicked, this, &VMFileNameSubItem::sigCkbClicked);
    connect(m_checkBox, &VMCheckBox::stateChanged, this, &VMFileNameSubItem::sigCkbStateChanged);
}

void VMFileNameSubItem::setFilePath(const QString &path)
{
    m_filePath = path;
    const QFileInfo info(path);
    m_nameLabel->setText(info.fileName());
    m_nameLabel->setToolTip(info.absoluteFilePath());
    m_checkBox->setAccessibleName(info.fileName());
}

QString VMFileNameSubItem::filePath() const
{
    return m_filePath;
}

VMCheckBox *VMFileNameSubItem::checkBox() const
{
    return m_checkBox;
}

VMElidedTextLabel *VMFileNameSubItem::nameLabel() const
{
    return m_nameLabel;
}
