#include "zyldocuments.h"

#include <QFileInfo>
#include <QUrl>

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/document/MacroExecMode.hpp>
#include <com/sun/star/document/UpdateDocMode.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/text/XTextFieldsSupplier.hpp>
#include <com/sun/star/util/XRefreshable.hpp>

#include "zyldocument.h"
#include "zylfilters.h"
#include "zylinteractionhandler.h"
#include "zyllog.h"
#include "zyloffice.h"
#include "zylsession.h"
#include "zyluno.h"

using namespace css;

namespace {
enum Member { Open };

const std::vector<ZylDispatch::Member> &members()
{
    static const std::vector<ZylDispatch::Member> table = {
        {"Open", DISPATCH_METHOD, 1, 16},
    };
    return table;
}

} // namespace

ZylDocuments::ZylDocuments(std::shared_ptr<ZylSession> session)
    : ZylDispatch(members())
    , m_session(std::move(session))
{
}

ZylDocuments::~ZylDocuments() = default;

HRESULT ZylDocuments::invokeMember(int id, const Args &args, VARIANT *result)
{
    if (id != Open)
        return DISP_E_MEMBERNOTFOUND;
    QString path;
    HRESULT hr = toText(args[0], &path);
    if (FAILED(hr))
        return hr;
    return open(path, result);
}

HRESULT ZylDocuments::open(const QString &path, VARIANT *result)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.isFile() || !info.isReadable()) {
        qCInfo(lcZylServer) << "no such file:" << path;
        return E_INVALIDARG;
    }
    // The office opens an empty file as a new document of the type its name suggests.
    if (info.size() == 0) {
        qCInfo(lcZylServer) << "empty file:" << path;
        return E_FAIL;
    }
    const QString absolute = info.absoluteFilePath();
    const QString url = QString::fromLatin1(QUrl::fromLocalFile(absolute).toEncoded());

    return m_session->office().call("Open", [&]() -> HRESULT {
        std::vector<beans::PropertyValue> props = {
            property("Hidden", uno::Any(true)),
            // The user's file is never written through the loaded document.
            property("ReadOnly", uno::Any(true)),
            property("MacroExecutionMode", uno::Any(document::MacroExecMode::NEVER_EXECUTE)),
            property("UpdateDocMode", uno::Any(document::UpdateDocMode::NO_UPDATE)),
            property("InteractionHandler", uno::Any(uno::Reference<task::XInteractionHandler>(new ZylInteractionHandler))),
        };
        const QString forced = ZylFilters::importFilterFor(absolute);
        if (!forced.isEmpty())
            props.push_back(property("FilterName", uno::Any(toOUString(forced))));
        const uno::Sequence<beans::PropertyValue> descriptor(props.data(), sal_Int32(props.size()));

        uno::Reference<lang::XComponent> component(m_session->takeUnchanged(absolute), uno::UNO_QUERY);
        if (!component.is())
            component = m_session->office().desktop()->loadComponentFromURL(toOUString(url), ou("_blank"), 0, descriptor);
        if (!component.is()) {
            qCInfo(lcZylServer) << "the office cannot open" << absolute;
            return E_FAIL;
        }
        uno::Reference<frame::XModel> model(component, uno::UNO_QUERY);
        uno::Reference<text::XTextDocument> textDocument(component, uno::UNO_QUERY);
        QString filter;
        if (model.is()) {
            const uno::Sequence<beans::PropertyValue> loadArgs = model->getArgs();
            for (const beans::PropertyValue &arg : loadArgs) {
                rtl::OUString name;
                if (arg.Name == "FilterName" && (arg.Value >>= name))
                    filter = toQString(name);
            }
        }
        uno::Reference<lang::XServiceInfo> serviceInfo(component, uno::UNO_QUERY);
        const bool isText = textDocument.is() && serviceInfo.is()
            && serviceInfo->supportsService(ou("com.sun.star.text.TextDocument"))
            && !serviceInfo->supportsService(ou("com.sun.star.text.GlobalDocument"));
        if (!model.is() || !isText || !ZylFilters::isDocumentFilter(filter)) {
            qCInfo(lcZylServer) << absolute << "is not a word-processing document (filter" << filter << ")";
            ZylSession::closeModel(model.is() ? model : uno::Reference<frame::XModel>());
            if (!model.is())
                component->dispose();
            return E_FAIL;
        }
        // A document that records changes would record every cut and insertion as a change of
        // its own: the cut pages would stay behind as deletions. Its earlier changes stay.
        uno::Reference<beans::XPropertySet> settings(component, uno::UNO_QUERY);
        if (settings.is())
            settings->setPropertyValue(ou("RecordChanges"), uno::Any(false));
        // Fields show what the file stored until they are updated, as printing and the office's
        // own PDF export do first: cross-references that changed length move page ends.
        uno::Reference<text::XTextFieldsSupplier> fields(component, uno::UNO_QUERY);
        uno::Reference<util::XRefreshable> refreshable(fields.is() ? fields->getTextFields() : nullptr, uno::UNO_QUERY);
        if (refreshable.is())
            refreshable->refresh();
        m_session->add(textDocument);
        setResult(result, new ZylDocument(m_session, textDocument, absolute, filter));
        return S_OK;
    });
}
