// What one application object owns in the office: its office share and the documents it opened.
// "Quit" closes exactly these documents.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include <com/sun/star/frame/XModel.hpp>

#include <vcomrt/com.h>

class ZylOffice;

class ZylSession {
public:
    explicit ZylSession(std::shared_ptr<ZylOffice> office);
    ~ZylSession();

    ZylOffice &office() const { return *m_office; }

    void add(const css::uno::Reference<css::frame::XModel> &model);
    bool contains(const css::uno::Reference<css::frame::XModel> &model) const;
    // Closes the document without saving; must run inside an office call.
    HRESULT close(const css::uno::Reference<css::frame::XModel> &model);
    // Closes every document of this session; must run inside an office call.
    HRESULT closeAll();

    static void closeModel(const css::uno::Reference<css::frame::XModel> &model);

private:
    std::shared_ptr<ZylOffice> m_office;
    mutable std::mutex m_mutex;
    std::vector<css::uno::Reference<css::frame::XModel>> m_models;
};
