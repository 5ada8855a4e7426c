#include "table/vmoperatesubitem.h"

#include <QHBoxLayout>
#include <QMouseEvent>

#include "host/liolite.h"

namespace {

VLiteButton *makeIconButton(QWidget *parent, const QString &toolTip, const QString &iconSet)
{
    auto *button = new VLiteButton(parent);
    button->setFixedSize(VLiteStyle::dpiScaledSize(16, 16));
    button->setIconSize(VLiteStyle::dpiScaledSize(16, 16));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setIcon(VDrawHelper::loadIcon(iconSet));
    return button;
}

} // namespace

VMOperateSubItem::VMOperateSubItem(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(int(VLiteStyle::dpiScaled(8)));

    m_openDirButton = makeIconButton(this, tr("Open folder"),
                                     QStringLiteral("vmopendir_item_normal;vmopendir_item_hover;vmopendir_item_click;"));
    m_openFileButton = makeIconButton(
        this, tr("Open file"), QStringLiteral("vmopenfile_item_normal;vmopenfile_item_hover;vmopenfile_item_click;"));
    m_dragButton = makeIconButton(this, tr("Drag and drop file order"),
                                  QStringLiteral("vmdrag_item_normal;vmdrag_item_hover;vmdrag_item_click;"));
    m_dragButton->setCursor(Qt::SizeAllCursor);
    m_dragButton->installEventFilter(this);
    m_deleteButton = makeIconButton(this, tr("Remove file"),
                                    QStringLiteral("vmdelete_item_normal;vmdelete_item_hover;vmdelete_item_click;"));
    for (VLiteButton *button : {m_openDirButton, m_openFileButton, m_dragButton, m_deleteButton})
        layout->addWidget(button);

    connect(m_openDirButton, &VLiteButton::clicked, this, &VMOperateSubItem::sigOpenDir);
    connect(m_openFileButton, &VLiteButton::clicked, this, &VMOperateSubItem::sigOpenFile);
    connect(m_deleteButton, &VLiteButton::clicked, this, &VMOperateSubItem::sigDelete);
}

VLiteButton *VMOperateSubItem::openDirButton() const
{
    return m_openDirButton;
}

VLiteButton *VMOperateSubItem::openFileButton() const
{
    return m_openFileButton;
}

VLiteButton *VMOperateSubItem::dragButton() const
{
    return m_dragButton;
}

VLiteButton *VMOperateSubItem::deleteButton() const
{
    return m_deleteButton;
}

bool VMOperateSubItem::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_dragButton && event->type() == QEvent::MouseMove
        && static_cast<QMouseEvent *>(event)->buttons() == Qt::LeftButton) {
        emit sigDrag();
        // The drag took the release: the handle would otherwise stay pressed.
        m_dragButton->setDown(false);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
