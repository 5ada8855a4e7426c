#pragma once

#include <liolite/liolite_export.h>

#include <QObject>

// Announces theme switches made with VLiteStyle::setTheme().
class LIOLITE_EXPORT VLiteThemeNotifier : public QObject
{
    Q_OBJECT
public:
    explicit VLiteThemeNotifier(QObject* parent = nullptr);

signals:
    void themeChanged();
};
