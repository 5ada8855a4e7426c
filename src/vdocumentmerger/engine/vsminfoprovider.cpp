#include "engine/vsminfoprovider.h"

#include <QThreadPool>

#include "engine/innerinfoprovider.h"

VSMInfoProvider::VSMInfoProvider(QObject *parent)
    : QObject(parent)
{
}

VSMInfoProvider::~VSMInfoProvider()
{
    m_liveWorkers.cancelAll();
}

bool VSMInfoProvider::hasLiveWorkers() const
{
    return !m_liveWorkers.isEmpty();
}

InnerInfoProvider *VSMInfoProvider::worker() const
{
    return m_worker.data();
}

void VSMInfoProvider::start(const QStringList &files)
{
    if (files.isEmpty())
        return;
    m_fileList = files;
    m_reported.clear();
    for (const QString &path : files)
        m_reported.insert(path, false);

    InnerInfoProvider *worker = createWorker();
    if (!worker)
        return;
    worker->setFileList(files);
    connect(this, &VSMInfoProvider::canceled, worker, &InnerInfoProvider::cancelTask);
    connect(worker, &InnerInfoProvider::taskFinished, this, &VSMInfoProvider::onTaskFinished);
    connect(worker, &InnerInfoProvider::infoPageCount, this, &VSMInfoProvider::onInfoPageCount);
    m_worker = worker;
    m_liveWorkers.add(worker, this, [this] { emit workersEnded(); });
    QThreadPool::globalInstance()->start(worker, 0);
}

void VSMInfoProvider::cancel()
{
    if (m_worker) {
        disconnect(m_worker.data(), &InnerInfoProvider::infoPageCount, this,
                   &VSMInfoProvider::onInfoPageCount);
        disconnect(m_worker.data(), &InnerInfoProvider::taskFinished, this,
                   &VSMInfoProvider::onTaskFinished);
    }
    emit canceled();
    for (auto it = m_reported.cbegin(); it != m_reported.cend(); ++it) {
        if (!it.value())
            emit infoPageCount(it.key(), false, 0);
    }
    emit infoTaskFinished(m_fileList, true);
}

void VSMInfoProvider::onTaskFinished(QStringList fileList, bool success)
{
    emit infoTaskFinished(fileList, success);
}

void VSMInfoProvider::onInfoPageCount(QString filePath, bool success, int count)
{
    auto it = m_reported.find(filePath);
    if (it != m_reported.end())
        it.value() = true;
    emit infoPageCount(filePath, success, count);
}
