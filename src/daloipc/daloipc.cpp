#include "host/daloipc.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QPointer>
#include <QThread>
#include <QUuid>

#include "daloipccall.h"
#include "dalorecords.h"

Q_LOGGING_CATEGORY(lcDaloIpcApi, "daloipc", QtWarningMsg)

QString DaloIpcAsynCallEx(const QString &method, const QGenericArgument &argument, QObject *receiver,
                          const QString &slotName)
{
    QCoreApplication *app = QCoreApplication::instance();
    const QString recordType = QString::fromLatin1(argument.name());
    if (!app || !receiver || slotName.isEmpty() || recordType != DaloRecords::argumentType(method)) {
        qCWarning(lcDaloIpcApi) << "refused call of" << method << "with" << recordType;
        return QString();
    }
    DaloIpcCall::Request request;
    request.method = method;
    request.recordType = recordType;
    if (!DaloRecords::argumentToBytes(recordType, argument.data(), &request.record))
        return QString();
    request.userId = DaloRecords::argumentUserId(recordType, argument.data());
    request.id = QUuid::createUuid().toString(QUuid::WithoutBraces);

    auto *call = new DaloIpcCall(request, receiver, slotName.toLatin1());
    // Replies must reach the receiver on the GUI thread, and only after this returns.
    call->moveToThread(app->thread());
    call->setParent(app);
    QMetaObject::invokeMethod(call, &DaloIpcCall::start, Qt::QueuedConnection);
    return request.id;
}
