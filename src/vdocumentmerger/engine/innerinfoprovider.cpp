#include "engine/innerinfoprovider.h"

InnerInfoProvider::InnerInfoProvider(const QStringList &fileList)
    : m_fileList(fileList)
{
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
