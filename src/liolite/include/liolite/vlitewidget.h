#pragma once

#include <liolite/liolite_export.h>

#include <QWidget>

// A plain container that can be given the look of a theme class.
class LIOLITE_EXPORT VLiteWidget : public QWidget
{
    Q_OBJECT
public:
    explicit VLiteWidget(QWidget* parent = nullptr);
    ~VLiteWidget() override;

    // Stores the class in the ObjectThemeClassName property and replaces this widget's style
    // sheet with the theme's look for it; re-applied whenever the theme changes. With cascade,
    // descendants that have no theme class of their own are given this one too.
    void applyThemeClass(const QString& themeClass, bool cascade = false);
    QString themeClass() const;
};
