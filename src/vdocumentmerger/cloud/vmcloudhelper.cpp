#include "cloud/vmcloudhelper.h"

#include <QDir>
#include <QPointer>

#include "cloudargs_types.h"
#include "host/daloipc.h"
#include "host/liolite.h"
#include "shell/cappcontroller.h"
#include "shell/hostservices.h"

VMCloudHelper *VMCloudHelper::instance()
{
    static QPointer<VMCloudHelper> helper;
    if (!helper)
        helper = new VMCloudHelper(CAppController::instance());
    return helper;
}

VMCloudHelper::VMCloudHelper(QObject *parent)
    : QObject(parent)
{
}

QString VMCloudHelper::cloudFolderPath()
{
    return tr("cloudapp/documentmerger");
}

QString VMCloudHelper::cloudPathDisplayText()
{
    return tr("%1 document merger cloud path").arg(yrt::product::getZYLDriveDisplayName());
}

QString VMCloudHelper::uploadFilesToCloud(const QString &filePath, const QString &cloudPath)
{
    if (!isLoggedIn())
        return QString();
    zyl::dalo::UploadFilesToCloudArg arg;
    arg.__set_userId(userId().toStdString());
    arg.__set_srcFiles({QDir::toNativeSeparators(filePath).toStdString()});
    arg.__set_cloudPath(cloudPath.toStdString());
    arg.__set_userData(filePath.toStdString());
    arg.__set_createWhenNoExists(true);
    return DaloIpcAsynCallEx(QStringLiteral("uploadFilesToCloud"),
                             QGenericArgument("UploadFilesToCloudArg", &arg), this,
                             QStringLiteral("onUploadFileFinished"));
}

QString VMCloudHelper::openVirtualCloudDisk(const QString &cloudPath, bool createWhenNoExists)
{
    if (!isLoggedIn())
        return QString();
    zyl::dalo::OpenVirtualCloudDiskArg arg;
    arg.__set_userId(userId().toStdString());
    arg.__set_cloudPath(cloudPath.toStdString());
    arg.__set_createWhenNoExists(createWhenNoExists);
    return DaloIpcAsynCallEx(QStringLiteral("openVirtualCloudDisk"),
                             QGenericArgument("OpenVirtualCloudDiskArg", &arg), this,
                             QStringLiteral("onOpenFolderFinished"));
}

QString VMCloudHelper::getCloudFileCachePath(const QString &cloudPath, const QString &fileName)
{
    if (!isLoggedIn())
        return QString();
    m_pendingFileName = fileName;
    m_waitingCachePath = true;
    zyl::dalo::GetCloudFileCachePathArg arg;
    arg.__set_userId(userId().toStdString());
    arg.__set_cloudPath(cloudPath.toStdString());
    return DaloIpcAsynCallEx(QStringLiteral("getCloudFileCachePath"),
                             QGenericArgument("GetCloudFileCachePathArg", &arg), this,
                             QStringLiteral("onGetCachePathFinished"));
}

void VMCloudHelper::onUploadFileFinished(bool bOk, QString requestId, zyl::dalo::UploadFilesToCloudResult result)
{
    emit uploadFileFinished(requestId, bOk, result.resultCode == 0);
}

void VMCloudHelper::onOpenFolderFinished(bool bOk, QString requestId, zyl::dalo::OpenVirtualCloudDiskResult result)
{
    emit openFolderFinished(requestId, bOk, result.resultCode == 0);
}

void VMCloudHelper::onGetCachePathFinished(bool bOk, QString requestId,
                                           zyl::dalo::GetCloudFileCachePathResult result)
{
    if (!m_waitingCachePath)
        return;
    m_waitingCachePath = false;
    const bool resultSuccess = result.resultCode == 0;
    const QString folder = QString::fromStdString(result.cacheFolder);
    const QString filePath = folder.isEmpty() ? QString() : QStringLiteral("%1/%2").arg(folder, m_pendingFileName);
    emit getCachePathFinished(requestId, bOk, resultSuccess, filePath);
}
