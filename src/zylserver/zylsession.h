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
    // A file as it was when a document was loaded from it or saved to it.
    struct DiskState {
        QString path;
        qint64 size = -1;
        QDateTime modified;
        static DiskState of(const QString &path);
        bool operator==(const DiskState &other) const;
    };

    // Closes the document without saving; must run inside an office call. A document that holds
    // just what its file does (asOnDisk) stays loaded instead, for takeUnchanged().
    HRESULT close(const css::uno::Reference<css::frame::XModel> &model, const DiskState &asOnDisk);
    // The document last closed as the file at path holds it, while the file is still as it was;
    // null otherwise. The caller owns it; must run inside an office call. A merge opens the copy
    // it has just cut, or inserts it, right after closing it: this spares a load of the file.
    css::uno::Reference<css::frame::XModel> takeUnchanged(const QString &path);
    // Closes every document of this session; must run inside an office call.
    HRESULT closeAll();

    static void closeModel(const css::uno::Reference<css::frame::XModel> &model);
    // Like closeModel(), for a document nobody waits for: an office that is gone is no failure.
    static void closeQuietly(const css::uno::Reference<css::frame::XModel> &model);

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
    struct Kept {
        css::uno::Reference<css::frame::XModel> model;
        DiskState disk;
    };
    Kept m_kept;
};
