#include "zylinteractionhandler.h"

#include <com/sun/star/task/XInteractionAbort.hpp>
#include <com/sun/star/task/XInteractionApprove.hpp>
#include <com/sun/star/task/XInteractionDisapprove.hpp>
#include <com/sun/star/task/ErrorCodeRequest.hpp>

#include <QString>

#include "zyllog.h"
#include "zyluno.h"

using namespace css;

namespace {
// Bit of an office error code that marks a warning, after which loading goes on.
const sal_Int32 kWarningFlag = 0x80000000;
}

void ZylInteractionHandler::handle(const uno::Reference<task::XInteractionRequest> &request)
{
    if (!request.is())
        return;
    const uno::Any what = request->getRequest();
    const rtl::OUString typeName = what.getValueTypeName();
    const uno::Sequence<uno::Reference<task::XInteractionContinuation>> continuations = request->getContinuations();

    task::ErrorCodeRequest errorCode;
    const bool isWarning = (what >>= errorCode) && (errorCode.ErrCode & kWarningFlag);
    qCInfo(lcZylServer) << "office asks:" << toQString(typeName)
                        << (isWarning ? "(warning)" : "");

    uno::Reference<task::XInteractionContinuation> choice;
    for (sal_Int32 i = 0; i < continuations.getLength() && !choice.is(); ++i) {
        if (isWarning && uno::Reference<task::XInteractionApprove>(continuations[i], uno::UNO_QUERY).is())
            choice = continuations[i];
    }
    for (sal_Int32 i = 0; i < continuations.getLength() && !choice.is(); ++i) {
        if (uno::Reference<task::XInteractionAbort>(continuations[i], uno::UNO_QUERY).is())
            choice = continuations[i];
    }
    for (sal_Int32 i = 0; i < continuations.getLength() && !choice.is(); ++i) {
        if (uno::Reference<task::XInteractionDisapprove>(continuations[i], uno::UNO_QUERY).is())
            choice = continuations[i];
    }
    if (choice.is())
        choice->select();
}
