#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

#include <thrift/Thrift.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>

#include "cloudargs_types.h"
#include "daloipc_export.h"
#include "daloipc_types.h"

// The cloud methods, their records, and the records in Thrift's binary protocol.
class DALOIPC_EXPORT DaloRecords {
public:
    // The argument record type a method takes; empty for an unknown method.
    static QString argumentType(const QString &method);
    // The result record type a method answers with; empty for an unknown method.
    static QString resultType(const QString &method);

    // The record behind a type name and pointer in the binary protocol; false for an unknown type.
    static bool argumentToBytes(const QString &recordType, const void *record, QByteArray *bytes);
    // The user id of an argument record of a known type.
    static QString argumentUserId(const QString &recordType, const void *record);

    template <class Record>
    static QByteArray toBytes(const Record &record)
    {
        auto buffer = std::make_shared<apache::thrift::transport::TMemoryBuffer>();
        apache::thrift::protocol::TBinaryProtocol protocol(buffer);
        record.write(&protocol);
        const std::string bytes = buffer->getBufferAsString();
        return QByteArray(bytes.data(), int(bytes.size()));
    }

    // Reads the whole of bytes into record. Returns false, and sets error when given, when
    // the record does not read or bytes go on after it.
    template <class Record>
    static bool fromBytes(const QByteArray &bytes, Record *record, QString *error = nullptr)
    {
        try {
            auto buffer = std::make_shared<apache::thrift::transport::TMemoryBuffer>(
                reinterpret_cast<uint8_t *>(const_cast<char *>(bytes.constData())), uint32_t(bytes.size()));
            // No string or container can be longer than the bytes at hand; without these limits
            // a forged length makes the protocol allocate it before finding the end of the data.
            const int32_t limit = qMax(1, bytes.size());
            apache::thrift::protocol::TBinaryProtocol protocol(buffer, limit, limit, false, true);
            record->read(&protocol);
            if (buffer->available_read() != 0) {
                if (error)
                    *error = QStringLiteral("%1 bytes after the record").arg(buffer->available_read());
                return false;
            }
            return true;
        } catch (const apache::thrift::TException &e) {
            if (error)
                *error = QString::fromUtf8(e.what());
        } catch (const std::exception &e) {
            if (error)
                *error = QString::fromUtf8(e.what());
        }
        return false;
    }
};
