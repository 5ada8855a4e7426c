#pragma once

#include <QString>

#include <vcomrt/com.h>
#include <vcomrt/comptr.h>

#include "vdocumentmerger_engine_export.h"

// Client of the word processor's automation server, by late binding over IDispatch.
//
// Holds one reference to the server's application object and nothing else. Every operation is
// a synchronous call on the calling thread that returns a COM status: the server's own code when
// a call fails, E_FAIL when a precondition fails (and then nothing is sent). Operations that
// yield an object hand the caller a new owning reference through their out-parameter, which is
// left empty on failure.
//
// The only error raised instead of returned: an argument string or value that cannot be
// allocated throws OutOfMemory.
class VDOCUMENTMERGER_ENGINE_EXPORT InnerZylProcessor {
public:
    using Dispatch = ComPtr<IDispatch>;

    struct OutOfMemory {
        HRESULT code;
    };

    InnerZylProcessor();
    virtual ~InnerZylProcessor();

    InnerZylProcessor(const InnerZylProcessor &) = delete;
    InnerZylProcessor &operator=(const InnerZylProcessor &) = delete;

    // The start of a worker run on the calling thread: enters a COM apartment and creates the
    // application object unless one is held. False when either fails. leaveRun() follows in
    // every case.
    bool enterRun();
    // Quits and releases the application object, and leaves the apartment enterRun() entered.
    void leaveRun();

    // Needs the calling thread to be inside a COM apartment.
    HRESULT createApplication();
    HRESULT quitApplication();
    // Drops the reference to the application object without telling the server.
    void releaseApplication();
    bool hasApplication() const;

    HRESULT documents(Dispatch *collection);
    // Backslashes in path are sent as forward slashes.
    HRESULT openDocument(const QString &path, Dispatch *document);
    HRESULT computeStatistics(IDispatch *document, int *pageCount);
    // -1 means unprotected.
    HRESULT protectionType(IDispatch *document, int *type);
    // Closes without saving.
    HRESULT closeDocument(IDispatch *document);
    HRESULT saveDocument(IDispatch *document);
    // Keeps the format the document was loaded in. The target must not exist.
    HRESULT saveDocumentAs(IDispatch *document, const QString &path);
    // format "docx" sends format code 12; anything else 0, the target's extension decides.
    HRESULT saveDocumentAs(IDispatch *document, const QString &path, const QString &format);
    HRESULT undo(IDispatch *document, int count);
    HRESULT goToPage(IDispatch *document, int page, Dispatch *range);
    HRESULT wholeRange(IDispatch *document, Dispatch *range);
    HRESULT rangeOf(IDispatch *document, int start, int end, Dispatch *range);
    HRESULT rangeStart(IDispatch *range, int *position);
    HRESULT rangeEnd(IDispatch *range, int *position);
    HRESULT collapseToEnd(IDispatch *range);
    HRESULT deleteRange(IDispatch *range);
    HRESULT insertBreakAtEnd(IDispatch *document);
    HRESULT insertParagraphAtEnd(IDispatch *document);
    // path is sent as given.
    HRESULT insertFileAtEnd(IDispatch *document, const QString &path);

    HRESULT pageStart(IDispatch *document, int page, int *position);
    // Where page + 1 begins, or the end of the document for its last page.
    HRESULT pageEnd(IDispatch *document, int page, int *position);
    HRESULT deletePages(IDispatch *document, int first, int last);
    HRESULT deleteLastCharacter(IDispatch *document);
    // Appends the document at path, as it is, behind a page break (a plain paragraph where the
    // break would not start exactly one new page).
    HRESULT appendDocument(IDispatch *target, const QString &path);

    // Calls a method with args in natural order; reverses them in place, as DISPPARAMS wants.
    // The arguments stay owned by the caller; result may be null.
    HRESULT callMethod(IDispatch *object, const char16_t *name, VARIANTARG *args, unsigned count,
                       VARIANT *result);

    static QString toForwardSlashes(const QString &path);

private:
    // args are already in DISPPARAMS order (last argument first).
    HRESULT invoke(IDispatch *object, const char16_t *name, WORD kind, VARIANTARG *args,
                   unsigned count, VARIANT *result);
    HRESULT callForObject(IDispatch *object, const char16_t *name, WORD kind, VARIANTARG *args,
                          unsigned count, Dispatch *out);
    HRESULT callForInt(IDispatch *object, const char16_t *name, WORD kind, VARIANTARG *args,
                       unsigned count, int *out);
    HRESULT pageBoundary(IDispatch *document, int page, bool end, int *position);
    HRESULT onCollapsedEnd(IDispatch *document, const char16_t *name, VARIANTARG *args, unsigned count);

    Dispatch m_application;
    bool m_inApartment = false;
};
