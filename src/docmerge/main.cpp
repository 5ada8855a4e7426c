#include <QCoreApplication>
#include <QDir>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cstdio>

#include "docmergeoptions.h"
#include "docmergerunner.h"
#include "shell/vmenv.h"
#include "terminationwatcher.h"

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("docmerge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DOCMERGE_VERSION));
    // stderr carries docmerge's own one-line reasons; the engine's and the server's diagnostics
    // stay quiet unless QT_LOGGING_RULES asks for them.
    QLoggingCategory::setFilterRules(QStringLiteral("vzyl.*=false\nvdocumentmerger.*=false"));

    const DocMergeOptions options = DocMergeOptions::parse(app.arguments().mid(1));
    switch (options.command()) {
    case DocMergeOptions::Command::Help:
        std::fputs(DocMergeOptions::usage().toLocal8Bit().constData(), stdout);
        return DocMergeRunner::Success;
    case DocMergeOptions::Command::Version:
        std::printf("docmerge %s\n", DOCMERGE_VERSION);
        return DocMergeRunner::Success;
    case DocMergeOptions::Command::None:
        std::fprintf(stderr, "docmerge: %s\n\n%s", qPrintable(options.error()),
                     DocMergeOptions::usage().toLocal8Bit().constData());
        return DocMergeRunner::UsageError;
    default:
        break;
    }

    // Runs side by side must not share working files: each would take the other's names and remove
    // the other's folder when it ends.
    QTemporaryDir privateTemp(QDir(QDir::tempPath()).filePath(QStringLiteral("docmerge-XXXXXX")));
    if (privateTemp.isValid())
        qputenv("TMPDIR", QFile::encodeName(privateTemp.path()));

    TerminationWatcher watcher;
    DocMergeRunner runner(options, stdout, stderr);
    QObject::connect(&watcher, &TerminationWatcher::terminationRequested, &runner, &DocMergeRunner::cancel);
    QObject::connect(&runner, &DocMergeRunner::finished, &app, &QCoreApplication::exit);
    runner.start();
    const int exitCode = app.exec();

    VMEnv::removeDirRecursively(VMEnv::tempRoot());
    return exitCode;
}
