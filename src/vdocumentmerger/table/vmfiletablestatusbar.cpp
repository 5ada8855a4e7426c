#include "table/vmfiletablestatusbar.h"

#include <QHBoxLayout>

namespace {

VLiteButton *statusButton(const QString &text, const QString &iconSet, const QString &themeClass, QWidget *parent)
{
    auto *button = new VLiteButton(text, parent);
    button->setCheckable(false);
    button->setAutoExclusive(false);
    button->setIconSize(VLiteStyle::dpiScaledSize(16, 16));
    button->setIcon(VDrawHelper::loadIcon(iconSet));
    button->applyThemeClass(themeClass);
    return button;
}

} // namespace

VMFileTableStatusBar::VMFileTableStatusBar(QWidget *parent)
    : VLiteWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    applyThemeClass(QStringLiteral("VMFileTableStatusBar"));
    setFixedHeight(int(VLiteStyle::dpiScaled(40)));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(int(VLiteStyle::dpiScaled(19)), 0, int(VLiteStyle::dpiScaled(19)), 0);
    layout->setSpacing(0);

    m_addFileButton = statusButton(tr("Add file"),
                                   QStringLiteral("vmaddfile_button_normal;vmaddfile_button_hover;vmaddfile_button_click"),
                                   QStringLiteral("VMButton_AddFile"), this);
    m_clearSelectedButton = statusButton(
        QString(),
        QStringLiteral("vmclear_select_button_normal;vmclear_select_button_hover;vmclear_select_button_click;"
                       "vmclear_select_button_disable"),
        QStringLiteral("VMButton_ClearSelected"), this);

    auto *separator = new VSeparatorLine(this, Qt::Vertical);
    separator->setLineWidth(1);
    separator->setFixedSize(VLiteStyle::dpiScaledSize(1, 12));

    auto *selectedLabel = new VLiteLabel(tr("Selected:"), this);
    selectedLabel->applyThemeClass(QStringLiteral("VMStyleLabel"));
    m_countLabel = new VLiteLabel(this);
    m_countLabel->applyThemeClass(QStringLiteral("VMCommonText02_Label"));

    const int gap = int(VLiteStyle::dpiScaled(12));
    layout->addWidget(m_clearSelectedButton);
    layout->addSpacing(gap);
    layout->addWidget(separator);
    layout->addSpacing(gap);
    layout->addWidget(m_addFileButton);
    layout->addStretch();
    layout->addWidget(selectedLabel);
    layout->addSpacing(int(VLiteStyle::dpiScaled(4)));
    layout->addWidget(m_countLabel);

    connect(m_addFileButton, &VLiteButton::clicked, this, &VMFileTableStatusBar::sigAddFile);
    connect(m_clearSelectedButton, &VLiteButton::clicked, this, &VMFileTableStatusBar::sigClearList);
    updateSelectedCount(0, 0);
}

void VMFileTableStatusBar::updateSelectedCount(int selected, int total)
{
    m_countLabel->setText(tr("%1copies").arg(selected));
    m_clearSelectedButton->setText(tr("Clear selected") + QStringLiteral("(%1/%2)").arg(selected).arg(total));
    m_clearSelectedButton->setEnabled(selected >= 1);
}
