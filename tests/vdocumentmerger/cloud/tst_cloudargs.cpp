#include <QtTest>

#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/protocol/TProtocolException.h>
#include <thrift/transport/TBufferTransports.h>

#include "cloudargs_types.h"
#include "dalorecords.h"

using apache::thrift::protocol::TBinaryProtocol;
using apache::thrift::protocol::TProtocolException;
using apache::thrift::protocol::TType;
using apache::thrift::transport::TMemoryBuffer;
using namespace zyl::dalo;

namespace {

struct Field {
    int16_t id;
    TType type;
};

// Each record's fields as they go on the wire.
const QHash<QString, QVector<Field>> &wireFields()
{
    using namespace apache::thrift::protocol;
    static const QHash<QString, QVector<Field>> fields{
        {"GetCloudFileCachePathArg", {{1, T_STRING}, {2, T_STRING}, {3, T_MAP}}},
        {"OpenVirtualCloudDiskArg",
         {{1, T_STRING}, {2, T_STRING}, {3, T_STRING}, {4, T_STRING}, {5, T_BOOL}, {6, T_STRING}, {7, T_MAP}}},
        {"UploadFilesToCloudArg",
         {{1, T_STRING}, {2, T_STRING}, {3, T_LIST}, {4, T_BOOL}, {5, T_STRING}, {6, T_STRING}, {7, T_MAP}}},
    };
    return fields;
}

void writeValue(TBinaryProtocol &out, TType type)
{
    using namespace apache::thrift::protocol;
    switch (type) {
    case T_STRING:
        out.writeString(std::string("v"));
        break;
    case T_BOOL:
        out.writeBool(false);
        break;
    case T_I32:
        out.writeI32(7);
        break;
    case T_LIST:
        out.writeListBegin(T_STRING, 1);
        out.writeString(std::string("a"));
        out.writeListEnd();
        break;
    case T_MAP:
        out.writeMapBegin(T_STRING, T_STRING, 1);
        out.writeString(std::string("k"));
        out.writeString(std::string("v"));
        out.writeMapEnd();
        break;
    default:
        QFAIL("no sample value for this type");
    }
}

// A record of the given type in the binary protocol, with field dropId left out and field
// retypeId sent as an i32.
QByteArray handWritten(const QString &record, int dropId, int retypeId)
{
    auto buffer = std::make_shared<TMemoryBuffer>();
    TBinaryProtocol out(buffer);
    out.writeStructBegin(record.toLatin1().constData());
    for (const Field &f : wireFields().value(record)) {
        if (f.id == dropId)
            continue;
        const TType type = f.id == retypeId ? apache::thrift::protocol::T_I32 : f.type;
        out.writeFieldBegin("f", type, f.id);
        writeValue(out, type);
        out.writeFieldEnd();
    }
    out.writeFieldStop();
    out.writeStructEnd();
    const std::string bytes = buffer->getBufferAsString();
    return QByteArray(bytes.data(), int(bytes.size()));
}

template <class Record>
void readRaw(const QByteArray &bytes, Record *record)
{
    auto buffer = std::make_shared<TMemoryBuffer>(reinterpret_cast<uint8_t *>(const_cast<char *>(bytes.data())),
                                                  uint32_t(bytes.size()));
    TBinaryProtocol in(buffer);
    record->read(&in);
}

// Reads bytes as the named record: -1 when it reads, else the exception's type. isset tells
// which optional fields were marked as read.
int readAs(const QString &record, const QByteArray &bytes, QString *isset)
{
    try {
        if (record == QLatin1String("UploadFilesToCloudArg")) {
            UploadFilesToCloudArg arg;
            readRaw(bytes, &arg);
            *isset = arg.__isset.extraParam ? "extraParam" : "";
        } else if (record == QLatin1String("OpenVirtualCloudDiskArg")) {
            OpenVirtualCloudDiskArg arg;
            readRaw(bytes, &arg);
            QStringList set;
            if (arg.__isset.entryIdentifier)
                set << "entryIdentifier";
            if (arg.__isset.extraParam)
                set << "extraParam";
            if (!arg.__isset.entryIdentifier && !arg.entryIdentifier.empty())
                set << "entryIdentifier-without-flag";
            *isset = set.join(',');
        } else {
            GetCloudFileCachePathArg arg;
            readRaw(bytes, &arg);
            *isset = arg.__isset.extraParam ? "extraParam" : "";
        }
    } catch (const TProtocolException &e) {
        return e.getType();
    }
    return -1;
}

} // namespace

class tst_CloudArgs : public QObject {
    Q_OBJECT

private slots:
    void roundTrip();
    void readHandWritten_data();
    void readHandWritten();
};

void tst_CloudArgs::roundTrip()
{
    UploadFilesToCloudArg upload;
    upload.__set_userId("u-42");
    upload.__set_cloudPath("cloudapp/documentmerger");
    upload.__set_srcFiles({"/tmp/a b.docx", "/tmp/\xc3\xa4.docx"});
    upload.__set_createWhenNoExists(false);
    upload.__set_userData("/tmp/a b.docx");
    upload.__set_extraParam({{"z", "1"}, {"a", "2"}});
    UploadFilesToCloudArg uploadBack;
    QVERIFY(DaloRecords::fromBytes(DaloRecords::toBytes(upload), &uploadBack));
    QVERIFY(uploadBack == upload);
    QVERIFY(uploadBack.__isset.extraParam);

    OpenVirtualCloudDiskArg open;
    open.__set_cloudPath("cloudapp");
    open.__set_entryIdentifier("entry");
    OpenVirtualCloudDiskArg openBack;
    QVERIFY(DaloRecords::fromBytes(DaloRecords::toBytes(open), &openBack));
    QVERIFY(openBack == open);
    QVERIFY(openBack.__isset.entryIdentifier);

    // Written in full even with its flag clear, so it reads back as set.
    GetCloudFileCachePathArg cache;
    cache.__set_userId("u");
    GetCloudFileCachePathArg cacheBack;
    QVERIFY(DaloRecords::fromBytes(DaloRecords::toBytes(cache), &cacheBack));
    QVERIFY(cacheBack == cache);
    QVERIFY(cacheBack.__isset.extraParam);
}

void tst_CloudArgs::readHandWritten_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<int>("dropId");
    QTest::addColumn<int>("retypeId");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("isset");

    const int reads = -1;
    const int invalid = TProtocolException::INVALID_DATA;
    QTest::newRow("upload_complete") << "UploadFilesToCloudArg" << 0 << 0 << reads << "extraParam";
    QTest::newRow("upload_without_userData") << "UploadFilesToCloudArg" << 5 << 0 << invalid << "";
    QTest::newRow("upload_without_extraParam") << "UploadFilesToCloudArg" << 7 << 0 << reads << "";
    QTest::newRow("upload_userData_as_i32") << "UploadFilesToCloudArg" << 0 << 5 << invalid << "";
    QTest::newRow("upload_srcFiles_as_i32") << "UploadFilesToCloudArg" << 0 << 3 << invalid << "";
    QTest::newRow("open_without_entryIdentifier") << "OpenVirtualCloudDiskArg" << 6 << 0 << reads << "extraParam";
    QTest::newRow("open_entryIdentifier_as_i32") << "OpenVirtualCloudDiskArg" << 0 << 6 << reads << "extraParam";
    QTest::newRow("open_createWhenNoExists_as_i32") << "OpenVirtualCloudDiskArg" << 0 << 5 << invalid << "";
    QTest::newRow("open_without_fileId") << "OpenVirtualCloudDiskArg" << 3 << 0 << invalid << "";
    QTest::newRow("cache_without_cloudPath") << "GetCloudFileCachePathArg" << 2 << 0 << invalid << "";
    QTest::newRow("cache_extraParam_as_i32") << "GetCloudFileCachePathArg" << 0 << 3 << reads << "";
}

void tst_CloudArgs::readHandWritten()
{
    QFETCH(QString, record);
    QFETCH(int, dropId);
    QFETCH(int, retypeId);
    QFETCH(int, error);
    QFETCH(QString, isset);

    QString readIsset;
    QCOMPARE(readAs(record, handWritten(record, dropId, retypeId), &readIsset), error);
    if (error < 0)
        QCOMPARE(readIsset, isset);
}

QTEST_APPLESS_MAIN(tst_CloudArgs)
#include "tst_cloudargs.moc"
