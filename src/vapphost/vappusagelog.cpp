#include "vappusagelog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include "vapplogging.h"

VAppUsageLog::VAppUsageLog(const QString &filePath)
    : m_filePath(filePath)
{
}

bool VAppUsageLog::append(const QString &name, const QHash<QString, QString> &params) const
{
    if (m_filePath.isEmpty())
        return false;
    const QFileInfo info(m_filePath);
    if (!QDir().mkpath(info.absolutePath())) {
        qCWarning(lcVAppHost) << "cannot create the folder of the usage log" << info.absolutePath();
        return false;
    }
    QFile file(m_filePath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        qCWarning(lcVAppHost) << "cannot open the usage log" << m_filePath << file.errorString();
        return false;
    }
    const QByteArray line = formatLine(name, params);
    // One write call per line keeps lines whole when another process appends at the same time.
    if (file.write(line) != line.size()) {
        qCWarning(lcVAppHost) << "cannot write the usage log" << m_filePath << file.errorString();
        return false;
    }
    return true;
}

QByteArray VAppUsageLog::formatLine(const QString &name, const QHash<QString, QString> &params)
{
    QJsonObject paramObject;
    for (auto it = params.cbegin(); it != params.cend(); ++it)
        paramObject.insert(it.key(), it.value());
    QJsonObject event;
    event.insert(QStringLiteral("event"), name);
    event.insert(QStringLiteral("params"), paramObject);
    return QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
}

QString VAppUsageLog::defaultFilePath()
{
    const QString stateHome = QString::fromLocal8Bit(qgetenv("XDG_STATE_HOME"));
    QString folder;
    if (!stateHome.isEmpty() && QDir::isAbsolutePath(stateHome))
        folder = stateHome + QStringLiteral("/vapphost");
    else
        folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (folder.isEmpty())
        folder = QDir::homePath() + QStringLiteral("/.local/state/vapphost");
    return QDir(folder).filePath(QStringLiteral("usage.jsonl"));
}
