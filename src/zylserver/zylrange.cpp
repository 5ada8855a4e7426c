#include "zylrange.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include "zyllog.h"
#include "zyloffice.h"
#include "zylsession.h"
#include "zylpagestyleimport.h"
#include "zyltextmodel.h"

using namespace css;

namespace {
enum Member { Start, End, Collapse, Delete, InsertBreak, InsertParagraph, InsertFile };

const std::vector<ZylDispatch::Member> &members()
{
    static const std::vector<ZylDispatch::Member> table = {
        {"Start", DISPATCH_PROPERTYGET, 0, 0},
        {"End", DISPATCH_PROPERTYGET, 0, 0},
        {"Collapse", DISPATCH_METHOD, 0, 1},
        {"Delete", DISPATCH_METHOD, 0, 2},
        {"InsertBreak", DISPATCH_METHOD, 0, 1},
        {"InsertParagraph", DISPATCH_METHOD, 0, 0},
        {"InsertFile", DISPATCH_METHOD, 1, 5},
    };
    return table;
}
} // namespace

ZylRange::ZylRange(std::shared_ptr<ZylSession> session, const uno::Reference<text::XTextDocument> &document,
                   LONG start, LONG end)
    : ZylDispatch(members())
    , m_session(std::move(session))
    , m_document(document)
    , m_start(start)
    , m_end(end)
{
}

ZylRange::~ZylRange()
{
    m_session->office().call("release range", [this] {
        m_document.clear();
        return S_OK;
    });
    m_document.clear();
}

HRESULT ZylRange::withDocument(const char *what, const std::function<HRESULT(ZylTextModel &)> &work)
{
    return m_session->office().call(what, [&]() -> HRESULT {
        const std::shared_ptr<ZylTextModel> model = m_session->textModel(m_document);
        if (!model) {
            qCInfo(lcZylServer) << what << "on a range of a closed document";
            return E_FAIL;
        }
        return work(*model);
    });
}

HRESULT ZylRange::invokeMember(int id, const Args &args, VARIANT *result)
{
    switch (id) {
    case Start:
        setResult(result, m_start);
        return S_OK;
    case End:
        setResult(result, m_end);
        return S_OK;
    case Collapse: {
        LONG direction = CollapseStart;
        if (!args.empty() && !isMissing(args[0])) {
            const HRESULT hr = toInt(args[0], &direction);
            if (FAILED(hr))
                return hr;
        }
        if (direction == CollapseEnd)
            m_start = m_end;
        else if (direction == CollapseStart)
            m_end = m_start;
        else
            return E_INVALIDARG;
        return S_OK;
    }
    case Delete:
        return withDocument("Delete", [&](ZylTextModel &model) -> HRESULT {
            // A collapsed range deletes the character after it.
            const LONG end = m_end > m_start ? m_end : m_start + 1;
            const HRESULT hr = model.deleteRange(m_start, end);
            if (SUCCEEDED(hr))
                m_end = m_start;
            return hr;
        });
    case InsertBreak: {
        LONG kind = PageBreak;
        if (!args.empty() && !isMissing(args[0])) {
            const HRESULT hr = toInt(args[0], &kind);
            if (FAILED(hr))
                return hr;
        }
        if (kind != PageBreak && kind != SectionBreakNextPage)
            return E_INVALIDARG;
        return withDocument("InsertBreak", [&](ZylTextModel &model) -> HRESULT {
            if (m_end > m_start) {
                const HRESULT hr = model.deleteRange(m_start, m_end);
                if (FAILED(hr))
                    return hr;
            }
            const HRESULT hr = model.insertPageBreak(m_start);
            if (SUCCEEDED(hr))
                m_end = m_start = m_start + 1;
            return hr;
        });
    }
    case InsertParagraph:
        return withDocument("InsertParagraph", [&](ZylTextModel &model) -> HRESULT {
            if (m_end > m_start) {
                const HRESULT hr = model.deleteRange(m_start, m_end);
                if (FAILED(hr))
                    return hr;
            }
            const HRESULT hr = model.insertParagraph(m_start);
            if (SUCCEEDED(hr))
                m_end = m_start + 1;
            return hr;
        });
    case InsertFile: {
        QString path;
        const HRESULT hr = toText(args[0], &path);
        if (FAILED(hr))
            return hr;
        const QFileInfo info(path);
        if (!info.isFile() || !info.isReadable()) {
            qCInfo(lcZylServer) << "no file to insert:" << path;
            return E_INVALIDARG;
        }
        const QString url = QString::fromLatin1(QUrl::fromLocalFile(info.absoluteFilePath()).toEncoded());
        return withDocument("InsertFile", [&](ZylTextModel &model) -> HRESULT {
            ZylPageStyleImport layout;
            bool prepared = false;
            try {
                prepared = layout.prepare(m_session->office().remoteContext(), m_session->office().desktop(), m_document,
                                          info.absoluteFilePath(),
                                          ZylOffice::privateFolder(), m_session->takeUnchanged(info.absoluteFilePath()));
            } catch (const uno::Exception &e) {
                qCInfo(lcZylServer) << "inserting" << path << "without its page layout:"
                                    << QString::fromUtf16(reinterpret_cast<const char16_t *>(e.Message.getStr()),
                                                          e.Message.getLength());
            }
            struct RemoveWhenDone {
                QString path;
                ~RemoveWhenDone()
                {
                    if (!path.isEmpty())
                        QFile::remove(path);
                }
            } preparedCopy{prepared ? layout.preparedPath() : QString()};
            const LONG before = model.endPosition();
            // Pages the document has of its own: the page the merge started for this one is not.
            int pagesBefore = model.pageCount();
            LONG lastStart = -1;
            if (SUCCEEDED(model.pageStart(pagesBefore, &lastStart)) && pagesBefore > 1 && lastStart + 1 >= m_start)
                --pagesBefore;
            const ZylTextModel::Insertion known{layout.firstPageStyle(), layout.firstPageNumber(),
                                                layout.startsWithTable(), layout.endsHidden(),
                                                layout.firstParagraph(), layout.lastParagraph()};
            HRESULT inserted = prepared ? model.insertFile(m_start, layout.preparedUrl(), known)
                                        : model.insertFile(m_start, url);
            if (prepared && SUCCEEDED(inserted))
                layout.restoreChanges(m_document);
            if (prepared && inserted == E_FAIL)
                inserted = model.insertFile(m_start, url);
            if (SUCCEEDED(inserted)) {
                m_end = m_start + (model.endPosition() - before);
                model.layoutRules().inserted(layout.layoutRules(), model.pageCount() - pagesBefore, m_document, pagesBefore);
            }
            return inserted;
        });
    }
    }
    return DISP_E_MEMBERNOTFOUND;
}
