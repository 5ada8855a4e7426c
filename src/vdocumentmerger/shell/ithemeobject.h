#pragma once

#include <QString>

// Something that takes its colours from a theme class chosen at run time.
class IThemeObject {
public:
    virtual ~IThemeObject() = default;

    virtual QString themeClassName() const = 0;
    virtual void setThemeClassName(const QString &themeClass) = 0;
};
