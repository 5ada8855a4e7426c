#include <liolite/vlitebutton.h>

#include <liolite/vdrawhelper.h>

#include "vlitethemeapplier.h"

#include <QEvent>

VLiteButton::VLiteButton(QWidget* parent)
    : VLiteButton(QString(), parent)
{
}

VLiteButton::VLiteButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent)
{
    setCursor(Qt::PointingHandCursor);
    applyDefaultLook();
}

VLiteButton::~VLiteButton() = default;

void VLiteButton::applyThemeClass(const QString& themeClass, bool cascade)
{
    m_explicitClass = true;
    VLiteThemeApplier::apply(this, themeClass, cascade);
}

QString VLiteButton::themeClass() const
{
    return VDrawHelper::getObjectThemeClassName(this);
}

void VLiteButton::applyDefaultLook()
{
    const QString wanted = text().isEmpty() ? QStringLiteral("VLiteButton_Icon") : QStringLiteral("VLiteButton");
    if (themeClass() != wanted)
        VLiteThemeApplier::applyDefault(this, wanted);
}

bool VLiteButton::event(QEvent* event)
{
    // Text is often set after construction; pick the default look once it is known.
    if (event->type() == QEvent::Show && !m_explicitClass)
        applyDefaultLook();
    return QPushButton::event(event);
}
