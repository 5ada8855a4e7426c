#pragma once

#include <liolite/liolite_export.h>

#include <QComboBox>
#include <QMap>
#include <QVariant>

class LIOLITE_EXPORT VLiteComboBox : public QComboBox
{
    Q_OBJECT
public:
    // Role under which addItem() keeps an item's extra map.
    static constexpr int ExtraDataRole = Qt::UserRole + 100;

    // With styledPopup, the drop-down list is drawn in the theme's look instead of the
    // platform's.
    explicit VLiteComboBox(QWidget* parent = nullptr, bool styledPopup = true);

    void addItem(const QString& text, const QVariant& userData = QVariant(),
                 const QMap<QString, QVariant>& extra = QMap<QString, QVariant>());
    QMap<QString, QVariant> itemExtra(int index) const;

    // Shows a check mark beside the current entry in the drop-down list.
    void setDisplayCheckState(bool display);
    bool displayCheckState() const;

    void applyThemeClass(const QString& themeClass, bool cascade = false);
    QString themeClass() const;

    // The list is made wide enough for its longest entry (and the check mark), even when the
    // box itself is narrower.
    void showPopup() override;

private:
    bool m_styledPopup = true;
    bool m_displayCheckState = false;
};
