#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

#include <cstdio>

#include "consoleprogress.h"
#include "docmergeoptions.h"
#include "engine/mergetask.h"

class VSMInfoProvider;
class VSMMerger;

// Carries out one counted or merged command line with the engine's page-count provider and
// merger, printing as results arrive. Emits finished(exitCode) once, after the engine's
// workers have ended, so that no word processor outlives the run.
class DocMergeRunner : public QObject {
    Q_OBJECT
public:
    enum ExitCode { Success = 0, Failure = 1, UsageError = 2 };

    DocMergeRunner(const DocMergeOptions &options, FILE *out, FILE *err, QObject *parent = nullptr);
    ~DocMergeRunner() override;

    void start();
    // Stops what runs; the exit code becomes 128 + signalNumber and nothing is left at the output.
    void cancel(int signalNumber);

    // The task as the merge page builds it; paths are made absolute.
    static MergeTask buildTask(const QList<MergeSource> &sources, const QString &outputPath);
    // The progress bar's share before the first source, and its value after index sources.
    static int initShare(int sourceCount);
    static int progressValue(int index, int percent, int sourceCount);

signals:
    void finished(int exitCode);

private:
    struct CountEntry {
        QString argument;
        QString absolutePath;
        bool done = false;
        bool success = false;
        int pages = 0;
    };

    void startCount();
    void onPageCount(const QString &path, bool success, int count);
    void onCountFinished(bool success);
    void startMerge();
    void onMergeInit();
    void onSubProgress(int index, int percent);
    void onMergeFinished(int result);
    void diagnose();
    void onDiagnosisFinished(bool success);
    void probeSource(int index);
    void onProbeFinished(int result);
    void failMerge(const QString &reason, const QString &failedSource = QString());
    void finishWhenIdle(int exitCode);
    void finishIfIdle();
    void printCountJson(bool serverStarted);
    void printMergeJson(bool success, const QString &error, const QString &failedSource);
    void removeUnwantedOutput();

    DocMergeOptions m_options;
    FILE *m_out;
    FILE *m_err;
    ConsoleProgress m_progress;
    QPointer<VSMInfoProvider> m_provider;
    QPointer<VSMMerger> m_merger;
    QVector<CountEntry> m_entries;
    MergeTask m_task;
    int m_probeIndex = 0;
    bool m_outputExisted = true;
    bool m_canceled = false;
    bool m_finishing = false;
    int m_exitCode = Success;
};
