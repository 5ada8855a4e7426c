// Calls the automation server the way a late-binding client does: names resolved with
// GetIDsOfNames, arguments handed to Invoke in reverse order.
#pragma once

#include <QString>
#include <QVector>

#include <vcomrt/com.h>
#include <vcomrt/comptr.h>

class ZylAutomation {
public:
    // Arguments are given in natural order; invoke() clears them.
    static VARIANT i4(LONG value);
    static VARIANT text(const QString &value);
    static VARIANT empty();

    static HRESULT createApplication(ComPtr<IDispatch> *application);
    static HRESULT invoke(IDispatch *object, const QString &name, WORD kind, QVector<VARIANT> args, VARIANT *result);

    static HRESULT method(IDispatch *object, const QString &name, QVector<VARIANT> args = {});
    static HRESULT methodObject(IDispatch *object, const QString &name, QVector<VARIANT> args, ComPtr<IDispatch> *out);
    static HRESULT methodInt(IDispatch *object, const QString &name, QVector<VARIANT> args, LONG *out);
    static HRESULT getObject(IDispatch *object, const QString &name, ComPtr<IDispatch> *out);
    static HRESULT getInt(IDispatch *object, const QString &name, LONG *out);

    // Composite steps as the merge engine takes them.
    static HRESULT open(IDispatch *application, const QString &path, ComPtr<IDispatch> *document);
    static HRESULT pageCount(IDispatch *document, LONG *pages);
    static HRESULT pageStart(IDispatch *document, LONG page, LONG *position);
    static HRESULT pageEnd(IDispatch *document, LONG page, LONG *position);
    static HRESULT deletePages(IDispatch *document, LONG first, LONG last);
    static HRESULT appendDocument(IDispatch *document, const QString &path);
};
