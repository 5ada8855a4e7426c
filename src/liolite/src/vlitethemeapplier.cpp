#include "vlitethemeapplier.h"

#include <liolite/vdrawhelper.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitethemenotifier.h>

#include "vlitethemestore.h"

#include <QStyle>
#include <QVariant>
#include <QWidget>

namespace {

const char* const FollowingProperty = "_liolite_following_theme";
const char* const AppliedProperty = "_liolite_theme_applied";
// The sheet the toolkit itself last set, to tell it from one the widget's owner set.
const char* const SheetProperty = "_liolite_sheet";

enum class Overwrite { Always, OnlyOwnSheet };

void setSheet(QWidget* widget, const QString& themeClass, Overwrite overwrite)
{
    const QString sheet = VLiteThemeStore::instance()->scaledStyleSheet(themeClass, VLiteStyle::dpi());
    const QString current = widget->styleSheet();
    const bool ownSheet = current == widget->property(SheetProperty).toString();
    // A class without a look, or a theme switch, never discards a sheet set by someone else.
    const bool mayReplace = ownSheet || (overwrite == Overwrite::Always && !sheet.isEmpty());
    if (mayReplace && current != sheet) {
        widget->setProperty(SheetProperty, sheet);
        widget->setStyleSheet(sheet);
        return;
    }
    if (mayReplace)
        widget->setProperty(SheetProperty, sheet);
    // Not polished yet (still being built): its first polish will match the new class.
    if (!widget->testAttribute(Qt::WA_WState_Polished))
        return;
    // Same sheet text, but the property may have changed: selectors must be matched again.
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

} // namespace

void VLiteThemeApplier::apply(QWidget* widget, const QString& themeClass, bool cascade)
{
    if (!widget)
        return;
    widget->setProperty(VDrawHelper::ObjectThemeClassName, themeClass);
    if (cascade) {
        const auto children = widget->findChildren<QWidget*>();
        for (QWidget* child : children) {
            if (VDrawHelper::getObjectThemeClassName(child).isEmpty())
                child->setProperty(VDrawHelper::ObjectThemeClassName, themeClass);
        }
    }
    widget->setProperty(AppliedProperty, true);
    setSheet(widget, themeClass, Overwrite::Always);
    follow(widget);
    widget->update();
}

void VLiteThemeApplier::applyDefault(QWidget* widget, const QString& themeClass)
{
    if (!widget)
        return;
    widget->setProperty(VDrawHelper::ObjectThemeClassName, themeClass);
    widget->setProperty(AppliedProperty, true);
    setSheet(widget, themeClass, Overwrite::OnlyOwnSheet);
    follow(widget);
    widget->update();
}

void VLiteThemeApplier::reapply(QWidget* widget)
{
    const QString themeClass = VDrawHelper::getObjectThemeClassName(widget);
    if (widget->property(AppliedProperty).toBool() && !themeClass.isEmpty())
        setSheet(widget, themeClass, Overwrite::OnlyOwnSheet);
    widget->update();
}

void VLiteThemeApplier::follow(QWidget* widget)
{
    if (widget->property(FollowingProperty).toBool())
        return;
    widget->setProperty(FollowingProperty, true);
    QObject::connect(VLiteStyle::notifier(), &VLiteThemeNotifier::themeChanged, widget,
                     [widget] { reapply(widget); });
}
