#include "zylsplitparagraph.h"

#include <com/sun/star/style/ParagraphAdjust.hpp>

#include "zyllog.h"
#include "zyluno.h"

using namespace css;

void ZylSplitParagraph::endAtBreak(const uno::Reference<beans::XPropertySet> &paragraph)
{
    try {
        paragraph->setPropertyValue(ou("ParaBottomMargin"), uno::Any(sal_Int32(0)));
        style::ParagraphAdjust adjust = style::ParagraphAdjust_LEFT;
        paragraph->getPropertyValue(ou("ParaAdjust")) >>= adjust;
        if (adjust == style::ParagraphAdjust_BLOCK)
            paragraph->setPropertyValue(ou("ParaLastLineAdjust"), uno::Any(sal_Int16(style::ParagraphAdjust_BLOCK)));
    } catch (const uno::Exception &e) {
        qCInfo(lcZylServer) << "a divided paragraph keeps its end:" << toQString(e.Message);
    }
}

void ZylSplitParagraph::continueAfterBreak(const uno::Reference<beans::XPropertySet> &paragraph)
{
    try {
        paragraph->setPropertyValue(ou("ParaTopMargin"), uno::Any(sal_Int32(0)));
        paragraph->setPropertyValue(ou("ParaFirstLineIndent"), uno::Any(sal_Int32(0)));
        uno::Reference<uno::XInterface> rules;
        paragraph->getPropertyValue(ou("NumberingRules")) >>= rules;
        if (rules.is())
            paragraph->setPropertyValue(ou("NumberingIsNumber"), uno::Any(false));
    } catch (const uno::Exception &e) {
        qCInfo(lcZylServer) << "a divided paragraph keeps its start:" << toQString(e.Message);
    }
}
