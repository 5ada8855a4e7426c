#include "fakezylobject.h"

#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>

#include <algorithm>
#include <cstring>

#include "fakezylserver.h"
#include "fakezylstate.h"

namespace {

// Argument types, one letter each: 'i' a 32-bit integer, 's' a string, 'e' nothing, 'o' either
// an integer or nothing.
struct Member {
    const char *name;
    FakeZylObject::Kind owner;
    WORD kind;
    const char *args;
};

using K = FakeZylObject::Kind;

const std::vector<Member> &members()
{
    static const std::vector<Member> table = {
        {"Quit", K::Application, DISPATCH_METHOD, ""},
        {"Documents", K::Application, DISPATCH_PROPERTYGET, ""},
        {"Open", K::Documents, DISPATCH_METHOD, "s"},
        {"ComputeStatistics", K::Document, DISPATCH_METHOD, "i"},
        {"ProtectionType", K::Document, DISPATCH_PROPERTYGET, ""},
        {"Close", K::Document, DISPATCH_METHOD, "i"},
        {"Save", K::Document, DISPATCH_METHOD, ""},
        {"SaveAs2", K::Document, DISPATCH_METHOD, "soesi"},
        {"Undo", K::Document, DISPATCH_METHOD, "i"},
        {"GoTo", K::Document, DISPATCH_METHOD, "iii"},
        // "Range" takes none or two; checked where it is carried out.
        {"Range", K::Document, DISPATCH_METHOD, ""},
        {"Start", K::Range, DISPATCH_PROPERTYGET, ""},
        {"End", K::Range, DISPATCH_PROPERTYGET, ""},
        {"Collapse", K::Range, DISPATCH_METHOD, "i"},
        {"Delete", K::Range, DISPATCH_METHOD, ""},
        {"InsertBreak", K::Range, DISPATCH_METHOD, "i"},
        {"InsertParagraph", K::Range, DISPATCH_METHOD, ""},
        {"InsertFile", K::Range, DISPATCH_METHOD, "s"},
    };
    return table;
}

QString text(const VARIANT *v)
{
    return QString::fromUtf16(v->bstrVal, int(SysStringLen(v->bstrVal)));
}

QString describe(const VARIANT *v)
{
    switch (v->vt) {
    case VT_I4:
        return QStringLiteral("i4:%1").arg(v->lVal);
    case VT_BSTR:
        return QStringLiteral("bstr:%1").arg(text(v));
    case VT_EMPTY:
        return QStringLiteral("empty");
    default:
        return QStringLiteral("vt%1").arg(v->vt);
    }
}

bool matches(char type, const VARIANT *v)
{
    return (v->vt == VT_I4 && (type == 'i' || type == 'o')) || (v->vt == VT_BSTR && type == 's' && v->bstrVal)
        || (v->vt == VT_EMPTY && (type == 'e' || type == 'o'));
}

bool readText(const QString &path, QString *out)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    *out = QString::fromUtf8(file.readAll());
    return true;
}

} // namespace

FakeZylObject *FakeZylObject::createApplication()
{
    return new FakeZylObject(Kind::Application, std::make_shared<Session>(), nullptr);
}

FakeZylObject::FakeZylObject(Kind kind, std::shared_ptr<Session> session, std::shared_ptr<Model> model)
    : m_kind(kind)
    , m_session(std::move(session))
    , m_model(std::move(model))
{
    FakeZylState::instance().liveObjects.fetch_add(1);
}

FakeZylObject::~FakeZylObject()
{
    FakeZylState::instance().liveObjects.fetch_sub(1);
}

HRESULT FakeZylObject::GetIDsOfNames(REFIID, LPOLESTR *rgszNames, UINT cNames, LCID, DISPID *rgDispId)
{
    if (!rgszNames || !rgDispId || cNames != 1)
        return E_INVALIDARG;
    const QString name = QString::fromUtf16(rgszNames[0]);
    const std::vector<Member> &table = members();
    for (size_t i = 0; i < table.size(); ++i) {
        if (table[i].owner == m_kind && name == QLatin1String(table[i].name)) {
            rgDispId[0] = DISPID(i + 1);
            return S_OK;
        }
    }
    rgDispId[0] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT FakeZylObject::Invoke(DISPID dispIdMember, REFIID, LCID, WORD wFlags, DISPPARAMS *params,
                              VARIANT *result, EXCEPINFO *, UINT *)
{
    const std::vector<Member> &table = members();
    if (dispIdMember < 1 || size_t(dispIdMember) > table.size())
        return DISP_E_MEMBERNOTFOUND;
    const Member &member = table[size_t(dispIdMember - 1)];
    if (member.owner != m_kind || member.kind != wFlags)
        return DISP_E_MEMBERNOTFOUND;
    if (!params || (params->cArgs && !params->rgvarg) || params->cNamedArgs)
        return E_INVALIDARG;

    std::vector<const VARIANT *> args;
    QStringList shown;
    for (UINT i = 0; i < params->cArgs; ++i) {
        args.push_back(&params->rgvarg[params->cArgs - 1 - i]);
        shown << describe(args.back());
    }
    FakeZylState &state = FakeZylState::instance();
    state.record(QStringLiteral("%1 %2.%3(%4)")
                     .arg(QLatin1String(wFlags == DISPATCH_PROPERTYGET ? "get" : "call"), objectName(),
                          QLatin1String(member.name), shown.join(QStringLiteral(", "))));

    const QString name = QLatin1String(member.name);
    const HRESULT scripted = state.enter(name);
    if (FAILED(scripted))
        return scripted;

    if (name != QLatin1String("Range")) {
        if (args.size() != strlen(member.args))
            return DISP_E_BADPARAMCOUNT;
        for (size_t i = 0; i < args.size(); ++i) {
            if (!matches(member.args[i], args[i]))
                return DISP_E_TYPEMISMATCH;
        }
    }
    if (result)
        VariantInit(result);
    if (m_model && !m_model->open)
        return RPC_E_DISCONNECTED;
    if (m_session->quit && name != QLatin1String("Quit"))
        return RPC_E_DISCONNECTED;
    return call(name, wFlags, args, result);
}

QString FakeZylObject::objectName() const
{
    static const char *const names[] = {"Application", "Documents", "Document", "Range"};
    return QLatin1String(names[int(m_kind)]);
}

HRESULT FakeZylObject::returnObject(FakeZylObject *object, VARIANT *result)
{
    if (!result) {
        object->Release();
        return S_OK;
    }
    result->vt = VT_DISPATCH;
    result->pdispVal = object;
    return S_OK;
}

void FakeZylObject::snapshot()
{
    m_model->undoStack.push_back(m_model->text);
}

int FakeZylObject::pageCount(const QString &text)
{
    return text.count(QLatin1Char('\f')) + 1;
}

int FakeZylObject::pageStartOffset(const QString &text, int page)
{
    int offset = 0;
    for (int p = 1; p < page; ++p) {
        const int next = text.indexOf(QLatin1Char('\f'), offset);
        if (next < 0)
            break;
        offset = next + 1;
    }
    return offset;
}

HRESULT FakeZylObject::call(const QString &member, WORD, const std::vector<const VARIANT *> &args,
                            VARIANT *result)
{
    FakeZylState &state = FakeZylState::instance();
    bool asText = false;
    {
        QMutexLocker locker(&state.mutex);
        asText = state.textAnswers.contains(member);
    }
    auto setInt = [result, asText](LONG value) {
        if (result && asText) {
            const std::u16string text = QString::number(value).toStdU16String();
            result->vt = VT_BSTR;
            result->bstrVal = SysAllocStringLen(text.data(), UINT(text.size()));
        } else if (result) {
            result->vt = VT_I4;
            result->lVal = value;
        }
        return S_OK;
    };

    switch (m_kind) {
    case Kind::Application:
        if (member == QLatin1String("Documents"))
            return returnObject(new FakeZylObject(Kind::Documents, m_session, nullptr), result);
        // Quit
        for (const std::shared_ptr<Model> &model : m_session->documents) {
            if (model->open) {
                model->open = false;
                state.openDocuments.fetch_sub(1);
            }
        }
        m_session->documents.clear();
        m_session->quit = true;
        return S_OK;

    case Kind::Documents: {
        const QString path = text(args[0]);
        auto model = std::make_shared<Model>();
        if (!readText(path, &model->text))
            return E_FAIL;
        model->path = path;
        model->fileName = QFileInfo(path).fileName();
        m_session->documents.push_back(model);
        state.openDocuments.fetch_add(1);
        return returnObject(new FakeZylObject(Kind::Document, m_session, model), result);
    }

    case Kind::Document: {
        Model &doc = *m_model;
        if (member == QLatin1String("ComputeStatistics"))
            return args[0]->lVal == 2 ? setInt(pageCount(doc.text)) : E_INVALIDARG;
        if (member == QLatin1String("ProtectionType")) {
            QMutexLocker locker(&state.mutex);
            return setInt(state.protection.value(doc.fileName, -1));
        }
        if (member == QLatin1String("Close")) {
            if (args[0]->lVal != 0)
                return E_INVALIDARG;
            doc.open = false;
            state.openDocuments.fetch_sub(1);
            auto &docs = m_session->documents;
            docs.erase(std::remove(docs.begin(), docs.end(), m_model), docs.end());
            return S_OK;
        }
        if (member == QLatin1String("Save"))
            return FakeZylServer::writeDocument(doc.path, {doc.text}) ? S_OK : E_ACCESSDENIED;
        if (member == QLatin1String("SaveAs2")) {
            const QString path = text(args[0]);
            if (QFile::exists(path))
                return E_ACCESSDENIED;
            if (!FakeZylServer::writeDocument(path, {doc.text}))
                return E_ACCESSDENIED;
            doc.path = path;
            return S_OK;
        }
        if (member == QLatin1String("Undo")) {
            for (LONG i = 0; i < args[0]->lVal && !doc.undoStack.empty(); ++i) {
                doc.text = doc.undoStack.back();
                doc.undoStack.pop_back();
            }
            return S_OK;
        }
        if (member == QLatin1String("GoTo")) {
            if (args[0]->lVal != 1 || args[1]->lVal != 1)
                return E_INVALIDARG;
            const int page = std::clamp<int>(args[2]->lVal, 1, pageCount(doc.text));
            auto *range = new FakeZylObject(Kind::Range, m_session, m_model);
            range->m_start = range->m_end = pageStartOffset(doc.text, page);
            return returnObject(range, result);
        }
        // Range
        auto *range = new FakeZylObject(Kind::Range, m_session, m_model);
        if (args.empty()) {
            range->m_end = doc.text.size();
        } else if (args.size() == 2 && matches('i', args[0]) && matches('i', args[1])) {
            const int length = doc.text.size();
            range->m_start = std::clamp<int>(args[0]->lVal, 0, length);
            range->m_end = std::clamp<int>(args[1]->lVal, 0, length);
            if (range->m_start > range->m_end)
                std::swap(range->m_start, range->m_end);
        } else {
            range->Release();
            return args.size() == 2 ? DISP_E_TYPEMISMATCH : DISP_E_BADPARAMCOUNT;
        }
        return returnObject(range, result);
    }

    case Kind::Range: {
        Model &doc = *m_model;
        m_start = std::min(m_start, int(doc.text.size()));
        m_end = std::min(m_end, int(doc.text.size()));
        if (member == QLatin1String("Start"))
            return setInt(m_start);
        if (member == QLatin1String("End"))
            return setInt(m_end);
        if (member == QLatin1String("Collapse")) {
            if (args[0]->lVal == 0)
                m_start = m_end;
            else
                m_end = m_start;
            return S_OK;
        }
        if (member == QLatin1String("Delete")) {
            snapshot();
            doc.text.remove(m_start, m_end - m_start);
            // As the real server does: a tail deleted up to the end takes the break before it.
            if (m_end >= doc.text.size() + (m_end - m_start) && doc.text.endsWith(QLatin1Char('\f')))
                doc.text.chop(1);
            m_end = m_start = std::min(m_start, int(doc.text.size()));
            return S_OK;
        }
        QString inserted;
        if (member == QLatin1String("InsertBreak")) {
            if (args[0]->lVal != 7)
                return E_INVALIDARG;
            bool twice = false;
            {
                QMutexLocker locker(&state.mutex);
                twice = state.breakAddsTwoPages;
            }
            inserted = twice ? QStringLiteral("\f\f") : QStringLiteral("\f");
        } else if (member == QLatin1String("InsertParagraph")) {
            inserted = QStringLiteral("\n");
        } else { // InsertFile
            QString content;
            if (!readText(text(args[0]), &content))
                return E_FAIL;
            inserted = content + QLatin1Char('\n');
        }
        snapshot();
        doc.text.insert(m_start, inserted);
        m_end = m_start + inserted.size();
        return S_OK;
    }
    }
    return E_UNEXPECTED;
}
