#include "zylsession.h"

#include <algorithm>

#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/util/CloseVetoException.hpp>
#include <com/sun/star/util/XCloseable.hpp>

#include "zyllog.h"
#include "zyloffice.h"

using namespace css;

ZylSession::ZylSession(std::shared_ptr<ZylOffice> office)
    : m_office(std::move(office))
{
}

ZylSession::~ZylSession()
{
    // Documents left open by a client that never called "Quit" close with the session.
    std::vector<uno::Reference<frame::XModel>> left;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        left.swap(m_models);
    }
    if (!left.empty() && m_office) {
        m_office->call("close on release", [&left] {
            for (const auto &model : left)
                closeModel(model);
            return S_OK;
        });
    }
    left.clear();
}

void ZylSession::add(const uno::Reference<frame::XModel> &model)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_models.push_back(model);
}

bool ZylSession::contains(const uno::Reference<frame::XModel> &model) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return std::find(m_models.begin(), m_models.end(), model) != m_models.end();
}

HRESULT ZylSession::close(const uno::Reference<frame::XModel> &model)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto it = std::find(m_models.begin(), m_models.end(), model);
        if (it == m_models.end())
            return E_FAIL;
        m_models.erase(it);
    }
    closeModel(model);
    return S_OK;
}

HRESULT ZylSession::closeAll()
{
    std::vector<uno::Reference<frame::XModel>> models;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        models.swap(m_models);
    }
    HRESULT hr = S_OK;
    for (const auto &model : models) {
        try {
            closeModel(model);
        } catch (const uno::Exception &) {
            hr = E_FAIL;
        }
    }
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
