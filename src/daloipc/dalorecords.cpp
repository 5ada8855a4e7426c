#include "dalorecords.h"

namespace {

struct MethodRecords {
    const char *method;
    const char *argument;
    const char *result;
};

const MethodRecords kMethods[] = {
    {"uploadFilesToCloud", "UploadFilesToCloudArg", "UploadFilesToCloudResult"},
    {"openVirtualCloudDisk", "OpenVirtualCloudDiskArg", "OpenVirtualCloudDiskResult"},
    {"getCloudFileCachePath", "GetCloudFileCachePathArg", "GetCloudFileCachePathResult"},
};

const MethodRecords *find(const QString &method)
{
    for (const MethodRecords &m : kMethods) {
        if (method == QLatin1String(m.method))
            return &m;
    }
    return nullptr;
}

} // namespace

QString DaloRecords::argumentType(const QString &method)
{
    const MethodRecords *m = find(method);
    return m ? QString::fromLatin1(m->argument) : QString();
}

QString DaloRecords::resultType(const QString &method)
{
    const MethodRecords *m = find(method);
    return m ? QString::fromLatin1(m->result) : QString();
}

bool DaloRecords::argumentToBytes(const QString &recordType, const void *record, QByteArray *bytes)
{
    using namespace zyl::dalo;
    if (!record)
        return false;
    try {
        if (recordType == QLatin1String("UploadFilesToCloudArg"))
            *bytes = toBytes(*static_cast<const UploadFilesToCloudArg *>(record));
        else if (recordType == QLatin1String("OpenVirtualCloudDiskArg"))
            *bytes = toBytes(*static_cast<const OpenVirtualCloudDiskArg *>(record));
        else if (recordType == QLatin1String("GetCloudFileCachePathArg"))
            *bytes = toBytes(*static_cast<const GetCloudFileCachePathArg *>(record));
        else
            return false;
    } catch (const apache::thrift::TException &) {
        return false;
    }
    return true;
}

QString DaloRecords::argumentUserId(const QString &recordType, const void *record)
{
    using namespace zyl::dalo;
    if (!record)
        return QString();
    if (recordType == QLatin1String("UploadFilesToCloudArg"))
        return QString::fromStdString(static_cast<const UploadFilesToCloudArg *>(record)->userId);
    if (recordType == QLatin1String("OpenVirtualCloudDiskArg"))
        return QString::fromStdString(static_cast<const OpenVirtualCloudDiskArg *>(record)->userId);
    if (recordType == QLatin1String("GetCloudFileCachePathArg"))
        return QString::fromStdString(static_cast<const GetCloudFileCachePathArg *>(record)->userId);
    return QString();
}
