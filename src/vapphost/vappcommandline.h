#pragma once

#include <QString>
#include <QStringList>

#include "vapphost_export.h"

class QCommandLineOption;
class QCommandLineParser;

// The host's command line, parsed without needing an application object so that the
// program can answer --help and reject bad options before it opens a window.
class VAPPHOST_EXPORT VAppCommandLine {
public:
    struct Options {
        QStringList files;          // exactly as given
        QString source;
        QString addonPath;          // empty: the default beside the executable
        bool signedOut = false;
        QString theme = QStringLiteral("light");
        double scale = 0.0;         // 0: the screen's own
        QString usageLogPath;       // empty: the default in the user's state folder
        QString screenshotPath;
        int quitAfterMs = -1;       // -1: run until closed
        QString serverName;         // empty: derived from the user id
        QString driveRoot;          // empty: the drive service's default
        bool helpRequested = false;
    };

    // arguments[0] is the program name. Returns false and sets errorString() on bad input.
    bool parse(const QStringList &arguments);

    const Options &options() const { return m_options; }
    QString errorString() const { return m_errorString; }

    static QString helpText(const QString &programName);
    // Used while the executable's folder is unknown to the caller.
    static QString defaultAddonPath(const QString &applicationDirPath);

private:
    // The steps of parse(); each returns false with errorString() set on bad input.
    static QString lastValue(const QCommandLineParser &parser, const QCommandLineOption &option);
    bool fail(const QString &error);
    bool takeText(const QCommandLineParser &parser, const QCommandLineOption &option, const QString &what,
                  QString *value);
    bool takeTheme(const QCommandLineParser &parser, const QCommandLineOption &option);
    bool takeScale(const QCommandLineParser &parser, const QCommandLineOption &option);
    bool takeQuitAfter(const QCommandLineParser &parser, const QCommandLineOption &option);

    Options m_options;
    QString m_errorString;
};
