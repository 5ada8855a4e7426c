#include <liolite/vlitewidget.h>

#include <liolite/vdrawhelper.h>

#include "vlitethemeapplier.h"

VLiteWidget::VLiteWidget(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
}

VLiteWidget::~VLiteWidget() = default;

void VLiteWidget::applyThemeClass(const QString& themeClass, bool cascade)
{
    VLiteThemeApplier::apply(this, themeClass, cascade);
}

QString VLiteWidget::themeClass() const
{
    return VDrawHelper::getObjectThemeClassName(this);
}
