#include "zyllayoutrules.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/beans/XPropertySetInfo.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>

#include "zyluno.h"

using namespace com::sun::star;

namespace {

// The settings that move text on a page; printer, view and file settings stay the target's. The
// spacing of a paragraph before a table stays the target's too: a page that starts with a table
// follows the paragraph the merge put before it, which the source did not have.
const char *const layoutSettings[] = {
    "AddExternalLeading", "UnxForceZeroExtLeading", "PrinterIndependentLayout", "UseFormerLineSpacing",
    "UseFormerObjectPositioning", "UseFormerTextWrapping", "UseOldNumbering", "UseOldPrinterMetrics",
    "AddParaTableSpacingAtStart", "AddParaSpacingToTableCells", "AddParaLineSpacingToTableCells",
    "AddVerticalFrameOffsets", "PropLineSpacingShrinksFirstLine",
    "IgnoreFirstLineIndentInNumbering", "IgnoreTabsAndBlanksForLineCalculation", "DoNotJustifyLinesWithManualBreak",
    "DoNotResetParaAttrsForNumFont", "DoNotCaptureDrawObjsOnPage", "ConsiderTextWrapOnObjPos",
    "SurroundTextWrapSmall", "SubtractFlysAnchoredAtFlys", "ClipAsCharacterAnchoredWriterFlyFrames",
    "ClippedPictures", "BackgroundParaOverDrawings", "WordLikeWrapForAsCharFlys", "DisableOffPagePositioning",
    "FloattableNomargins", "FrameAutowidthWithMorePara", "TableRowKeep", "CollapseEmptyCellPara",
    "TabsRelativeToIndent", "TabAtLeftIndentForParagraphsInList", "TabOverMargin", "TabOverflow",
    "TabOverSpacing", "AlignTabStopPosition", "UnbreakableNumberings", "NoNumberingShowFollowBy",
    "ApplyParagraphMarkFormatToNumbering", "AutoFirstLineIndentDisregardLineSpace", "MathBaselineAlignment",
    "SmallCapsPercentage66", "MsWordCompTrailingBlanks", "HeaderSpacingBelowLastPara", "InvertBorderSpacing",
    "FootnoteInColumnToPageEnd", "TreatSingleColumnBreakAsPageBreak", "EmptyDbFieldHidesPara",
};

uno::Reference<beans::XPropertySet> settingsOf(const uno::Reference<uno::XInterface> &document)
{
    uno::Reference<lang::XMultiServiceFactory> factory(document, uno::UNO_QUERY);
    if (!factory.is())
        return nullptr;
    return uno::Reference<beans::XPropertySet>(factory->createInstance(ou("com.sun.star.text.DocumentSettings")),
                                               uno::UNO_QUERY);
}

} // namespace

ZylLayoutRules ZylLayoutRules::of(const uno::Reference<uno::XInterface> &document)
{
    ZylLayoutRules rules;
    try {
        const uno::Reference<beans::XPropertySet> settings = settingsOf(document);
        if (!settings.is())
            return rules;
        const uno::Reference<beans::XPropertySetInfo> info = settings->getPropertySetInfo();
        for (const char *name : layoutSettings) {
            const rtl::OUString key = ou(name);
            if (info->hasPropertyByName(key))
                rules.m_values.emplace_back(key, settings->getPropertyValue(key));
        }
    } catch (const uno::Exception &) {
        rules.m_values.clear();
    }
    return rules;
}

void ZylLayoutRules::inserted(const ZylLayoutRules &part, int pages, const uno::Reference<uno::XInterface> &target,
                              int pagesBefore)
{
    if (m_pages < 0) {
        m_values = of(target).m_values;
        m_pages = pagesBefore;
    }
    if (!part.isEmpty() && pages > m_pages) {
        m_values = part.m_values;
        m_pages = pages;
    }
}

void ZylLayoutRules::applyTo(const uno::Reference<uno::XInterface> &document) const
{
    const uno::Reference<beans::XPropertySet> settings = m_values.empty() ? nullptr : settingsOf(document);
    if (!settings.is())
        return;
    for (const auto &value : m_values) {
        try {
            settings->setPropertyValue(value.first, value.second);
        } catch (const uno::Exception &) {
            // The document keeps its own for this one.
        }
    }
}
