#pragma once

#include <QString>

#include <memory>
#include <vector>

#include <vcomrt/com.h>
#include <vcomrt/dispatchbase.h>

// One automation object of the test double: the application, its documents collection, a
// document or a range. Documents and ranges share their document's text.
class FakeZylObject : public DispatchBase {
public:
    enum class Kind { Application, Documents, Document, Range };

    struct Model {
        QString path;
        QString fileName; // as opened, for the protection script
        QString text;
        std::vector<QString> undoStack;
        bool open = true;
    };
    struct Session {
        std::vector<std::shared_ptr<Model>> documents;
        bool quit = false;
    };

    static FakeZylObject *createApplication();

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR *rgszNames, UINT cNames, LCID lcid,
                                            DISPID *rgDispId) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID dispIdMember, REFIID riid, LCID lcid, WORD wFlags,
                                     DISPPARAMS *pDispParams, VARIANT *pVarResult,
                                     EXCEPINFO *pExcepInfo, UINT *puArgErr) override;

    static int pageCount(const QString &text);
    static int pageStartOffset(const QString &text, int page);

private:
    FakeZylObject(Kind kind, std::shared_ptr<Session> session, std::shared_ptr<Model> model);
    ~FakeZylObject();

    QString objectName() const;
    HRESULT call(const QString &member, WORD kind, const std::vector<const VARIANT *> &args,
                 VARIANT *result);
    HRESULT returnObject(FakeZylObject *object, VARIANT *result);
    void snapshot();

    Kind m_kind;
    std::shared_ptr<Session> m_session;
    std::shared_ptr<Model> m_model;
    int m_start = 0;
    int m_end = 0;
};
