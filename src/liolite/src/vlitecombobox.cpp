#include <liolite/vlitecombobox.h>

#include <liolite/vdrawhelper.h>

#include "vlitecomboitemdelegate.h"
#include "vlitethemeapplier.h"

#include <QAbstractItemView>
#include <QListView>

VLiteComboBox::VLiteComboBox(QWidget* parent, bool styledPopup)
    : QComboBox(parent)
    , m_styledPopup(styledPopup)
{
    setCursor(Qt::PointingHandCursor);
    if (m_styledPopup) {
        // A QListView (rather than the platform's popup) lets the style sheet and delegate reach it.
        auto* list = new QListView(this);
        list->setObjectName(QStringLiteral("vlite_combo_list"));
        setView(list);
        setItemDelegate(new VLiteComboItemDelegate(this));
    }
    VLiteThemeApplier::applyDefault(this, QStringLiteral("VLiteComboBox"));
}

void VLiteComboBox::addItem(const QString& text, const QVariant& userData, const QMap<QString, QVariant>& extra)
{
    QComboBox::addItem(text, userData);
    if (!extra.isEmpty())
        setItemData(count() - 1, extra, ExtraDataRole);
}

QMap<QString, QVariant> VLiteComboBox::itemExtra(int index) const
{
    return itemData(index, ExtraDataRole).toMap();
}

void VLiteComboBox::setDisplayCheckState(bool display)
{
    m_displayCheckState = display;
    if (auto* delegate = qobject_cast<VLiteComboItemDelegate*>(itemDelegate()))
        delegate->setShowCheckMark(display);
    view()->viewport()->update();
}

bool VLiteComboBox::displayCheckState() const
{
    return m_displayCheckState;
}

void VLiteComboBox::applyThemeClass(const QString& themeClass, bool cascade)
{
    VLiteThemeApplier::apply(this, themeClass, cascade);
}

QString VLiteComboBox::themeClass() const
{
    return VDrawHelper::getObjectThemeClassName(this);
}

void VLiteComboBox::showPopup()
{
    QAbstractItemView* list = view();
    const int frame = 2 * list->frameWidth() + 2;
    int widest = 0;
    for (int row = 0; row < count(); ++row)
        widest = qMax(widest, list->sizeHintForIndex(model()->index(row, modelColumn())).width());
    list->setMinimumWidth(qMax(width(), widest + frame));
    QComboBox::showPopup();
}
