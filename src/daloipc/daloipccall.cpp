#include "daloipccall.h"

#include <QLocalSocket>
#include <QLoggingCategory>
#include <QMetaObject>
#include <QTimer>

#include "daloconfig.h"
#include "dalodriveprocess.h"
#include "daloframe.h"
#include "dalorecords.h"

Q_LOGGING_CATEGORY(lcDaloIpc, "daloipc.call", QtWarningMsg)

namespace {

const int kRetryConnectMs = 50;

} // namespace

DaloIpcCall::DaloIpcCall(const Request &request, QObject *receiver, const QByteArray &slotName)
    : m_request(request)
    , m_receiver(receiver)
    , m_slotName(slotName)
    , m_socket(new QLocalSocket(this))
    , m_deadline(new QTimer(this))
{
    m_deadline->setSingleShot(true);
    connect(m_deadline, &QTimer::timeout, this, [this] {
        qCWarning(lcDaloIpc) << m_request.method << "got no answer in time";
        finish(false);
    });
    connect(m_socket, &QLocalSocket::connected, this, &DaloIpcCall::onConnected);
    connect(m_socket, &QLocalSocket::readyRead, this, &DaloIpcCall::onReadyRead);
    connect(m_socket, &QLocalSocket::errorOccurred, this, &DaloIpcCall::onSocketError);
}

void DaloIpcCall::start()
{
    m_deadline->start(DaloConfig::replyTimeoutMs());
    connectToService();
}

void DaloIpcCall::connectToService()
{
    if (!m_finished)
        m_socket->connectToServer(DaloConfig::socketName());
}

void DaloIpcCall::onConnected()
{
    zyl::dalo::DaloRequestFrame frame;
    frame.requestId = m_request.id.toStdString();
    frame.method = m_request.method.toStdString();
    frame.recordType = m_request.recordType.toStdString();
    frame.record = m_request.record.toStdString();
    const QByteArray packed = DaloFrame::pack(DaloRecords::toBytes(frame));
    if (packed.isEmpty()) {
        qCWarning(lcDaloIpc) << m_request.method << "request too large";
        finish(false);
        return;
    }
    m_socket->write(packed);
}

void DaloIpcCall::onReadyRead()
{
    m_buffer.append(m_socket->readAll());
    QByteArray payload;
    switch (DaloFrame::take(m_buffer, &payload)) {
    case DaloFrame::Status::Incomplete:
        return;
    case DaloFrame::Status::TooLarge:
        finish(false);
        return;
    case DaloFrame::Status::Complete:
        break;
    }
    zyl::dalo::DaloReplyFrame reply;
    QString error;
    if (!DaloRecords::fromBytes(payload, &reply, &error) || reply.requestId != m_request.id.toStdString()) {
        qCWarning(lcDaloIpc) << m_request.method << "unreadable reply:" << error;
        finish(false);
        return;
    }
    finish(true, reply.resultCode, QByteArray::fromStdString(reply.result));
}

void DaloIpcCall::onSocketError()
{
    if (m_finished)
        return;
    const QLocalSocket::LocalSocketError error = m_socket->error();
    const bool nobodyListens = error == QLocalSocket::ServerNotFoundError
                               || error == QLocalSocket::ConnectionRefusedError;
    if (!nobodyListens || m_socket->state() == QLocalSocket::ConnectedState) {
        qCWarning(lcDaloIpc) << m_request.method << "lost the drive service:" << m_socket->errorString();
        finish(false);
        return;
    }
    if (!m_startedService) {
        m_startedService = true;
        QString startError;
        if (!DaloDriveProcess::startDetached(m_request.userId, &startError)) {
            qCWarning(lcDaloIpc) << startError;
            finish(false);
            return;
        }
    }
    // The service needs a moment before it listens; the deadline bounds the waiting.
    QTimer::singleShot(kRetryConnectMs, this, &DaloIpcCall::connectToService);
}

void DaloIpcCall::finish(bool ok, int code, const QByteArray &result)
{
    if (m_finished)
        return;
    m_finished = true;
    m_deadline->stop();
    m_socket->abort();
    if (!ok)
        code = zyl::dalo::DaloResultCode::FailedOnIpc;
    if (m_request.method == QLatin1String("uploadFilesToCloud"))
        deliver<zyl::dalo::UploadFilesToCloudResult>(ok, code, result);
    else if (m_request.method == QLatin1String("openVirtualCloudDisk"))
        deliver<zyl::dalo::OpenVirtualCloudDiskResult>(ok, code, result);
    else
        deliver<zyl::dalo::GetCloudFileCachePathResult>(ok, code, result);
    deleteLater();
}

template <class Result>
void DaloIpcCall::deliver(bool ok, int code, const QByteArray &bytes)
{
    if (!m_receiver)
        return;
    Result result;
    if (!ok || bytes.isEmpty() || !DaloRecords::fromBytes(bytes, &result)) {
        result = Result();
        result.resultCode = code;
    }
    // The receiver may spell the record's type with or without its namespace.
    const QByteArray bare = DaloRecords::resultType(m_request.method).toLatin1();
    QByteArray typeName = bare;
    const QByteArray qualified = "zyl::dalo::" + bare;
    const QByteArray qualifiedSignature = m_slotName + "(bool,QString," + qualified + ')';
    if (m_receiver->metaObject()->indexOfMethod(qualifiedSignature.constData()) >= 0)
        typeName = qualified;
    if (!QMetaObject::invokeMethod(m_receiver.data(), m_slotName.constData(), Qt::DirectConnection,
                                   Q_ARG(bool, ok), Q_ARG(QString, m_request.id),
                                   QGenericArgument(typeName.constData(), &result))) {
        qCWarning(lcDaloIpc) << "the receiver has no slot" << m_slotName << "taking" << bare;
    }
}
