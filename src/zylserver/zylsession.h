// What one application object owns in the office: its office share and the documents it opened,
// each with the text model that lives as long as it is open. "Quit" closes exactly these
// documents.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include <QDateTime>
#include <QString>

#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/text/XTextDocument.hpp>

#include <vcomrt/com.h>

class ZylOffice;
class ZylTextModel;

class ZylSession {
public:
    explicit ZylSession(std::shared_ptr<ZylOffice> office);
    ~ZylSession();

    ZylOffice &office() const { return *m_office; }

    // Takes the document in and gives it its text model; must run inside an office call.
    void add(const css::uno::Reference<css::text::XTextDocument> &document);
    // The open document's text model; null once it is closed.
    std::shared_ptr<ZylTextModel> textModel(const css::uno::Reference<css::text::XTextDocument> &document) const;
    // Closes the document without saving; must run inside an office call. A document that is
    // just as it was saved at savedPath is kept loaded instead, for takeSaved().
    HRESULT close(const css::uno::Reference<css::frame::XModel> &model, const QString &savedPath = QString());
    // The document last closed as saved at path, while that file is as it was saved; null
    // otherwise. The caller closes it; must run inside an office call. Spares inserting a freshly cut copy a load of its own.
    css::uno::Reference<css::frame::XModel> takeSaved(const QString &path);
    // Closes every document of this session; must run inside an office call.
    HRESULT closeAll();

    static void closeModel(const css::uno::Reference<css::frame::XModel> &model);

private:
    std::shared_ptr<ZylOffice> m_office;
    mutable std::mutex m_mutex;
    struct Open {
        css::uno::Reference<css::frame::XModel> model;
        std::shared_ptr<ZylTextModel> text;
    };
    // Lets go of the documents' text models and closes them; runs inside an office call.
    static HRESULT closeOpen(std::vector<Open> &open);

    std::vector<Open> m_open;
    struct Saved {
        css::uno::Reference<css::frame::XModel> model;
        QString path;
        qint64 size = -1;
        QDateTime modified;
    };
    Saved m_saved;
};
