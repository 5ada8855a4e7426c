#pragma once

#include <liolite/liolite_export.h>

#include <QPushButton>

// Push button with a theme look. Until a theme class is applied, a button with text takes the
// look of "VLiteButton" (the accent button) and one without text "VLiteButton_Icon" (a flat
// icon).
class LIOLITE_EXPORT VLiteButton : public QPushButton
{
    Q_OBJECT
public:
    explicit VLiteButton(QWidget* parent = nullptr);
    explicit VLiteButton(const QString& text, QWidget* parent = nullptr);
    ~VLiteButton() override;

    void applyThemeClass(const QString& themeClass, bool cascade = false);
    QString themeClass() const;

protected:
    bool event(QEvent* event) override;

private:
    void applyDefaultLook();

    bool m_explicitClass = false;
};
