#include "daloframe.h"

#include <QtEndian>

QByteArray DaloFrame::pack(const QByteArray &payload)
{
    if (payload.size() > kMaxPayload)
        return QByteArray();
    QByteArray frame(4, Qt::Uninitialized);
    qToBigEndian<quint32>(quint32(payload.size()), frame.data());
    frame.append(payload);
    return frame;
}

DaloFrame::Status DaloFrame::take(QByteArray &buffer, QByteArray *payload)
{
    if (buffer.size() < 4)
        return Status::Incomplete;
    const quint32 size = qFromBigEndian<quint32>(buffer.constData());
    if (size > quint32(kMaxPayload))
        return Status::TooLarge;
    if (quint32(buffer.size()) - 4 < size)
        return Status::Incomplete;
    *payload = buffer.mid(4, int(size));
    buffer.remove(0, 4 + int(size));
    return Status::Complete;
}
