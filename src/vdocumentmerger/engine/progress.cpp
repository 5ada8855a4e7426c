#include "engine/progress.h"

#include "host/liolite.h"

Progress::Progress(QWidget *parent)
    : QProgressBar(parent)
{
}

Progress::~Progress() = default;

QString Progress::themeClassName() const
{
    return VDrawHelper::getObjectThemeClassName(this, QString());
}

void Progress::setThemeClassName(const QString &themeClass)
{
    setProperty(VDrawHelper::ObjectThemeClassName, themeClass);
}

void Progress::showEvent(QShowEvent *event)
{
    if (m_stylePending) {
        const QString themeClass = themeClassName();
        applyStyle(VDrawHelper::getColorFromTheme(themeClass, QStringLiteral("progressBar-background"),
                                                  QColor(QStringLiteral("#EAECED"))),
                   VDrawHelper::getColorFromTheme(themeClass, QStringLiteral("progressBar-chunk"),
                                                  QColor(QStringLiteral("#417FF9"))));
        m_stylePending = false;
    }
    QProgressBar::showEvent(event);
}

void Progress::applyStyle(const QColor &background, const QColor &chunk)
{
    const int radius = height() / 2;
    setStyleSheet(QStringLiteral("QProgressBar{ border-radius: %1px; background-color: %3; } "
                                 "QProgressBar::chunk{ border-radius: %1px; background-color: %2; }")
                      .arg(radius)
                      .arg(chunk.name())
                      .arg(background.name()));
}
