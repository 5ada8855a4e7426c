#include "officeprocesses.h"

#include <QDir>
#include <QFile>

QList<qint64> OfficeProcesses::startedBy(qint64 starter)
{
    QList<qint64> found;
    const QByteArray marker = QStringLiteral("vzyl_%1_").arg(starter).toLatin1();
    for (const QString &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool isPid = false;
        const qint64 pid = entry.toLongLong(&isPid);
        if (!isPid)
            continue;
        QFile cmdline(QStringLiteral("/proc/%1/cmdline").arg(entry));
        if (!cmdline.open(QIODevice::ReadOnly))
            continue;
        const QByteArray args = cmdline.readAll();
        if (args.contains("soffice.bin") && args.contains(marker))
            found.append(pid);
    }
    return found;
}
