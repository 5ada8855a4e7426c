#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

#include "daloconfig.h"
#include "dalodriveserver.h"

// The drive service. Exit codes: 0 done (or another service already answers), 1 bad command
// line, 2 the socket could not be opened.
int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("dalodrive"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Keeps each user's cloud drive as a folder."));
    parser.addHelpOption();
    const QCommandLineOption socket(QStringLiteral("socket"), QStringLiteral("Local socket to listen on."),
                                    QStringLiteral("NAME"));
    const QCommandLineOption drive(QStringLiteral("drive"), QStringLiteral("Folder holding the drives."),
                                   QStringLiteral("DIR"));
    const QCommandLineOption user(QStringLiteral("user"), QStringLiteral("The signed-in user id."),
                                  QStringLiteral("ID"));
    const QCommandLineOption control(QStringLiteral("control-stdin"),
                                     QStringLiteral("Follow \"user ID\"/\"signout\" lines on input; quit at its end."));
    const QCommandLineOption replace(QStringLiteral("replace"),
                                     QStringLiteral("Take the socket over from a running service."));
    const QCommandLineOption idle(QStringLiteral("idle-exit"), QStringLiteral("Quit after MS without requests."),
                                  QStringLiteral("MS"));
    const QCommandLineOption openWith(QStringLiteral("open-with"),
                                      QStringLiteral("Program that opens a drive folder."), QStringLiteral("PROGRAM"));
    parser.addOptions({socket, drive, user, control, replace, idle, openWith});
    if (!parser.parse(app.arguments())) {
        std::fprintf(stderr, "dalodrive: %s\n", qPrintable(parser.errorText()));
        return 1;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(0);

    DaloDriveServer::Options options;
    options.socketName = parser.isSet(socket) ? parser.value(socket) : DaloConfig::socketName();
    options.driveRoot = parser.isSet(drive) ? parser.value(drive) : DaloConfig::driveRoot();
    options.user = parser.value(user);
    options.controlStdin = parser.isSet(control);
    options.replace = parser.isSet(replace);
    options.openWith = parser.value(openWith);
    if (parser.isSet(idle)) {
        bool ok = false;
        options.idleExitMs = parser.value(idle).toInt(&ok);
        if (!ok || options.idleExitMs < 0) {
            std::fprintf(stderr, "dalodrive: --idle-exit takes milliseconds, not \"%s\"\n",
                         qPrintable(parser.value(idle)));
            return 1;
        }
    }
    if (options.socketName.isEmpty() || options.driveRoot.isEmpty()) {
        std::fprintf(stderr, "dalodrive: --socket and --drive need a value\n");
        return 1;
    }

    DaloDriveServer server(options);
    if (!server.listen()) {
        std::fprintf(stderr, "dalodrive: %s\n", qPrintable(server.errorString()));
        return server.alreadyServed() ? 0 : 2;
    }
    return app.exec();
}
