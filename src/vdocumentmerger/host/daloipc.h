#pragma once

#include <QGenericArgument>
#include <QString>

class QObject;

// Sends one request to the drive service and returns its id at once.
//
// argument names the record's class ("UploadFilesToCloudArg", "OpenVirtualCloudDiskArg",
// "GetCloudFileCachePathArg") and points to it; the record is read before the call returns.
// Later, on the GUI thread, receiver's slot slotName (the bare name) is called with
// (bool taskOk, QString requestId, <method's result record>). taskOk is false when the
// service could not be reached or did not answer in time. A receiver destroyed before its
// reply gets no call. An unknown method or record type, a method the record does not belong
// to, or a null receiver: an empty id, and nothing is sent.
// Call it on the GUI thread.
QString DaloIpcAsynCallEx(const QString &method, const QGenericArgument &argument, QObject *receiver,
                          const QString &slotName);
