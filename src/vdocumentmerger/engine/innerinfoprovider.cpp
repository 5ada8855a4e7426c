#include "engine/innerinfoprovider.h"

#include <QReadLocker>
#include <QWriteLocker>

InnerInfoProvider::InnerInfoProvider(const QStringList &fileList)
    : m_fileList(fileList)
{
    setAutoDelete(false);
}

InnerInfoProvider::~InnerInfoProvider() = default;

QStringList InnerInfoProvider::fileList() const
{
    return m_fileList;
}

void InnerInfoProvider::setFileList(const QStringList &fileList)
{
    m_fileList = fileList;
}

bool InnerInfoProvider::isCanceled() const
{
    QReadLocker locker(&m_cancelLock);
    return m_canceled;
}

void InnerInfoProvider::cancelTask()
{
    QWriteLocker locker(&m_cancelLock);
    m_canceled = true;
}

void InnerInfoProvider::finishRun()
{
    deleteLater();
}
