// One open document of an application object.
#pragma once

#include <functional>
#include <memory>

#include <com/sun/star/text/XTextDocument.hpp>

#include "zyldispatch.h"
#include "zylsession.h"

class ZylTextModel;

class ZylDocument : public ZylDispatch {
public:
    ZylDocument(std::shared_ptr<ZylSession> session, const css::uno::Reference<css::text::XTextDocument> &document,
                const QString &path, const QString &loadFilter);

    // Protection kinds as "ProtectionType" reports them.
    enum Protection {
        NoProtection = -1,
        AllowOnlyRevisions = 0,
        AllowOnlyComments = 1,
        AllowOnlyFormFields = 2,
        AllowOnlyReading = 3
    };

protected:
    HRESULT invokeMember(int id, const Args &args, VARIANT *result) override;

private:
    ~ZylDocument() override;

    // Runs work inside an office call, failing when the document is no longer open.
    HRESULT withDocument(const char *what, const std::function<HRESULT(ZylTextModel &)> &work);
    int protection();
    HRESULT save(ZylTextModel &model);
    HRESULT saveAs(ZylTextModel &model, const QString &path, const QString &filter);
    HRESULT storeAtomically(ZylTextModel &model, const QString &target, const QString &filter, bool mayReplace);
    HRESULT undo(int count);

    std::shared_ptr<ZylSession> m_session;
    css::uno::Reference<css::text::XTextDocument> m_document;
    QString m_path;
    QString m_loadFilter;
    // The file as the document was last loaded from it or saved to it, and the text model's
    // generation then.
    ZylSession::DiskState m_disk;
    unsigned long m_diskGeneration = 0;
};
