// Reads arbitrary bytes as each argument record, as one request frame, and as a stream of
// frames answered by a drive that has nobody signed in (so nothing touches the disk).
#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

#include "dalodrive.h"
#include "daloframe.h"
#include "dalorecords.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));

    zyl::dalo::UploadFilesToCloudArg upload;
    DaloRecords::fromBytes(bytes, &upload);
    zyl::dalo::OpenVirtualCloudDiskArg open;
    DaloRecords::fromBytes(bytes, &open);
    zyl::dalo::GetCloudFileCachePathArg cache;
    DaloRecords::fromBytes(bytes, &cache);

    DaloDrive::Request request;
    DaloDrive::readRequest(bytes, &request);

    static DaloDrive drive(QStringLiteral("/nonexistent/dalodrive-fuzz"));
    QByteArray stream(bytes.constData(), bytes.size());
    QByteArray payload;
    QString folder;
    while (DaloFrame::take(stream, &payload) == DaloFrame::Status::Complete) {
        const QByteArray reply = drive.handle(payload, &folder);
        zyl::dalo::DaloReplyFrame frame;
        if (!DaloRecords::fromBytes(reply, &frame))
            __builtin_trap();
    }
    return 0;
}
