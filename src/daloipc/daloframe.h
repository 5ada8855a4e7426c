#pragma once

#include <QByteArray>

#include "daloipc_export.h"

// Frames on the service's socket: a 32-bit big-endian length, then that many bytes.
class DALOIPC_EXPORT DaloFrame {
public:
    static const int kMaxPayload = 1 << 20;

    enum class Status { Incomplete, Complete, TooLarge };

    // The payload with its length in front; an empty array when payload is too large.
    static QByteArray pack(const QByteArray &payload);
    // Moves the first whole frame's payload from buffer into payload. TooLarge leaves the
    // buffer as it was: the stream cannot be trusted from there on.
    static Status take(QByteArray &buffer, QByteArray *payload);
};
