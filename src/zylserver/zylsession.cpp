#include "zylsession.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>

#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/util/CloseVetoException.hpp>
#include <com/sun/star/util/XCloseable.hpp>

#include "zyllog.h"
#include "zyloffice.h"
#include "zyltextmodel.h"

using namespace css;

ZylSession::ZylSession(std::shared_ptr<ZylOffice> office)
    : m_office(std::move(office))
{
}

ZylSession::~ZylSession()
{
    // Documents left open by a client that never called "Quit" close with the session.
    std::vector<Open> left;
    uno::Reference<frame::XModel> kept;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        left.swap(m_open);
        kept = std::exchange(m_kept, Kept()).model;
    }
    if ((!left.empty() || kept.is()) && m_office)
        m_office->call("close on release", [&left, &kept] {
            closeQuietly(kept);
            return closeOpen(left);
        });
    left.clear();
}

void ZylSession::add(const uno::Reference<text::XTextDocument> &document)
{
    Open open{uno::Reference<frame::XModel>(document, uno::UNO_QUERY), std::make_shared<ZylTextModel>(document)};
    open.text->attach();
    std::lock_guard<std::mutex> lock(m_mutex);
    m_open.push_back(std::move(open));
}

std::shared_ptr<ZylTextModel> ZylSession::textModel(const uno::Reference<text::XTextDocument> &document) const
{
    const uno::Reference<frame::XModel> model(document, uno::UNO_QUERY);
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = std::find_if(m_open.begin(), m_open.end(), [&](const Open &o) { return o.model == model; });
    return it == m_open.end() ? nullptr : it->text;
}

ZylSession::DiskState ZylSession::DiskState::of(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() ? DiskState{file.absoluteFilePath(), file.size(), file.lastModified()} : DiskState();
}

bool ZylSession::DiskState::operator==(const DiskState &other) const
{
    return path == other.path && size == other.size && modified == other.modified;
}

HRESULT ZylSession::close(const uno::Reference<frame::XModel> &model, const DiskState &asOnDisk)
{
    std::vector<Open> closing;
    uno::Reference<frame::XModel> dropped = model;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto it = std::find_if(m_open.begin(), m_open.end(), [&](const Open &o) { return o.model == model; });
        if (it == m_open.end())
            return E_FAIL;
        closing.push_back(std::move(*it));
        m_open.erase(it);
        if (!asOnDisk.path.isEmpty() && asOnDisk == DiskState::of(asOnDisk.path))
            dropped = std::exchange(m_kept, Kept{model, asOnDisk}).model;
    }
    closing.front().text->detach();
    // The document kept before may be gone with an earlier office; that is no failure of this one.
    if (dropped == model)
        closeModel(model);
    else
        closeQuietly(dropped);
    return S_OK;
}

uno::Reference<frame::XModel> ZylSession::takeUnchanged(const QString &path)
{
    Kept kept;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        kept = std::exchange(m_kept, Kept());
    }
    if (!kept.model.is())
        return nullptr;
    if (kept.disk.path == QFileInfo(path).absoluteFilePath() && kept.disk == DiskState::of(path))
        return kept.model;
    closeQuietly(kept.model);
    return nullptr;
}

HRESULT ZylSession::closeAll()
{
    std::vector<Open> open;
    uno::Reference<frame::XModel> kept;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        open.swap(m_open);
        kept = std::exchange(m_kept, Kept()).model;
    }
    closeQuietly(kept);
    return closeOpen(open);
}

HRESULT ZylSession::closeOpen(std::vector<Open> &open)
{
    HRESULT hr = S_OK;
    for (const Open &o : open) {
        try {
            o.text->detach();
            closeModel(o.model);
        } catch (const uno::Exception &) {
            hr = E_FAIL;
        }
    }
    open.clear();
    return hr;
}

void ZylSession::closeModel(const uno::Reference<frame::XModel> &model)
{
    uno::Reference<util::XCloseable> closeable(model, uno::UNO_QUERY);
    if (closeable.is()) {
        try {
            closeable->close(true);
            return;
        } catch (const util::CloseVetoException &) {
            // Someone still works on it; it closes when they let go.
            return;
        }
    }
    uno::Reference<lang::XComponent> component(model, uno::UNO_QUERY);
    if (component.is())
        component->dispose();
}

void ZylSession::closeQuietly(const uno::Reference<frame::XModel> &model)
{
    if (!model.is())
        return;
    try {
        closeModel(model);
    } catch (const uno::Exception &) {
    }
}
