#pragma once

#include <QObject>
#include <QString>

#include "daloipc_types.h"
#include "vdocumentmerger_export.h"

// The add-on's link to the cloud drive: sends the three requests through the host's IPC
// library and turns each reply into a signal. Requests return the request id; an empty id
// means nothing was sent (nobody signed in, or the library refused), and no signal follows.
class VDOCUMENTMERGER_EXPORT VMCloudHelper : public QObject {
    Q_OBJECT
public:
    // Created on the first call, as a child of the application controller.
    static VMCloudHelper *instance();

    // The add-on's folder on the cloud drive.
    static QString cloudFolderPath();
    static QString cloudPathDisplayText();

    QString uploadFilesToCloud(const QString &filePath, const QString &cloudPath);
    QString openVirtualCloudDisk(const QString &cloudPath, bool createWhenNoExists);
    QString getCloudFileCachePath(const QString &cloudPath, const QString &fileName);

signals:
    void uploadFileFinished(QString requestId, bool taskSuccess, bool resultSuccess);
    void openFolderFinished(QString requestId, bool taskSuccess, bool resultSuccess);
    void getCachePathFinished(QString requestId, bool taskSuccess, bool resultSuccess, QString filePath);

private slots:
    // Called by the IPC library, by name.
    void onUploadFileFinished(bool bOk, QString requestId, zyl::dalo::UploadFilesToCloudResult result);
    void onOpenFolderFinished(bool bOk, QString requestId, zyl::dalo::OpenVirtualCloudDiskResult result);
    void onGetCachePathFinished(bool bOk, QString requestId, zyl::dalo::GetCloudFileCachePathResult result);

private:
    explicit VMCloudHelper(QObject *parent);

    QString m_pendingFileName;
    bool m_waitingCachePath = false;
};
