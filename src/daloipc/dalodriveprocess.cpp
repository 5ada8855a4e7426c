#include "dalodriveprocess.h"

#include <QElapsedTimer>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QProcess>
#include <QThread>
#include <QUrl>

#include "daloconfig.h"

Q_LOGGING_CATEGORY(lcDaloDriveProcess, "daloipc.driveprocess", QtInfoMsg)

namespace {

const int kStopWaitMs = 3000;
const int kListenWaitMs = 3000;

QStringList baseArguments()
{
    return {QStringLiteral("--socket"), DaloConfig::socketName(), QStringLiteral("--drive"),
            DaloConfig::driveRoot()};
}

} // namespace

DaloDriveProcess::DaloDriveProcess(QObject *parent)
    : QObject(parent)
{
}

DaloDriveProcess::~DaloDriveProcess()
{
    stop();
}

bool DaloDriveProcess::start(const QString &userId)
{
    stop();
    m_process = new QProcess(this);
    m_process->setProcessChannelMode(QProcess::ForwardedChannels);
    QStringList args = baseArguments();
    args << QStringLiteral("--control-stdin") << QStringLiteral("--replace");
    if (!userId.isEmpty())
        args << QStringLiteral("--user") << userId;
    m_process->start(DaloConfig::serviceExecutable(), args);
    if (!m_process->waitForStarted()) {
        m_errorString = QStringLiteral("cannot start the drive service %1: %2")
                            .arg(DaloConfig::serviceExecutable(), m_process->errorString());
        delete m_process;
        m_process = nullptr;
        return false;
    }
    // Requests sent before it listens would start a second service of their own.
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < kListenWaitMs && m_process->state() == QProcess::Running) {
        QLocalSocket probe;
        probe.connectToServer(DaloConfig::socketName());
        if (probe.waitForConnected(kListenWaitMs)) {
            qCInfo(lcDaloDriveProcess) << "drive service listens on" << DaloConfig::socketName();
            return true;
        }
        QThread::msleep(20);
    }
    qCWarning(lcDaloDriveProcess) << "the drive service does not listen on" << DaloConfig::socketName();
    return true;
}

void DaloDriveProcess::setUser(const QString &userId)
{
    if (!isRunning())
        return;
    // Percent-encoded so that no user id can end the line early.
    const QByteArray line = userId.isEmpty()
                                ? QByteArrayLiteral("signout\n")
                                : "user " + QUrl::toPercentEncoding(userId) + '\n';
    m_process->write(line);
}

void DaloDriveProcess::stop()
{
    if (!m_process)
        return;
    if (m_process->state() != QProcess::NotRunning) {
        m_process->closeWriteChannel();
        if (!m_process->waitForFinished(kStopWaitMs)) {
            qCWarning(lcDaloDriveProcess) << "the drive service did not end; killing it";
            m_process->kill();
            m_process->waitForFinished(kStopWaitMs);
        }
    }
    delete m_process;
    m_process = nullptr;
}

bool DaloDriveProcess::isRunning() const
{
    return m_process && m_process->state() == QProcess::Running;
}

bool DaloDriveProcess::startDetached(const QString &userId, QString *errorString)
{
    QProcess process;
    QStringList args = baseArguments();
    args << QStringLiteral("--idle-exit") << QString::number(DaloConfig::onDemandIdleMs());
    if (!userId.isEmpty())
        args << QStringLiteral("--user") << userId;
    process.setProgram(DaloConfig::serviceExecutable());
    process.setArguments(args);
    process.setStandardInputFile(QProcess::nullDevice());
    if (!process.startDetached()) {
        if (errorString)
            *errorString = QStringLiteral("cannot start the drive service %1").arg(process.program());
        return false;
    }
    return true;
}
