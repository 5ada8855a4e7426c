#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// One run of the docmerge program to its end; exitCode is -1 when it did not end normally in time.
struct DocMergeRun {
    int exitCode = -1;
    QString out;
    QString err;
};

inline DocMergeRun runDocMerge(const QStringList &arguments, const QString &workingDirectory,
                               const QProcessEnvironment &environment, int timeoutMs)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(workingDirectory);
    process.start(QStringLiteral(DOCMERGE_PROGRAM), arguments);
    DocMergeRun result;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.err = QString::fromLocal8Bit(process.readAllStandardError());
    return result;
}
