#pragma once

#include <QHash>
#include <QString>

#include "vapphost_export.h"

// Appends usage events to a file, one compact JSON object per line:
// {"event":"<name>","params":{"<key>":"<value>",...}}. The file is opened for each event, so
// several processes may share it and a crash loses at most the event being written.
class VAPPHOST_EXPORT VAppUsageLog {
public:
    explicit VAppUsageLog(const QString &filePath = QString());

    QString filePath() const { return m_filePath; }

    // Returns false when the event could not be written; the reason goes to the log category.
    bool append(const QString &name, const QHash<QString, QString> &params) const;

    static QByteArray formatLine(const QString &name, const QHash<QString, QString> &params);
    // "usage.jsonl" in $XDG_STATE_HOME/vapphost, else in the application's local data folder.
    static QString defaultFilePath();

private:
    QString m_filePath;
};
