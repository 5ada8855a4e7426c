#pragma once

#include <QStyledItemDelegate>

class QComboBox;

// Draws the entries of a themed combo box's list: comfortable height, hover highlight, and a
// check mark beside the current entry when asked to.
class VLiteComboItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit VLiteComboItemDelegate(QComboBox* combo);

    void setShowCheckMark(bool show);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    QComboBox* m_combo;
    bool m_showCheckMark = false;
};
