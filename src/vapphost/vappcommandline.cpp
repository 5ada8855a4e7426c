#include "vappcommandline.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QDir>

namespace {

const int kDefaultScreenshotDelayMs = 2000;

} // namespace

bool VAppCommandLine::parse(const QStringList &arguments)
{
    m_options = Options();
    m_errorString.clear();

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QString());
    const QCommandLineOption addon(QStringLiteral("addon"), QString(), QStringLiteral("PATH"));
    const QCommandLineOption src(QStringLiteral("src"), QString(), QStringLiteral("TEXT"));
    const QCommandLineOption signedOut(QStringLiteral("signed-out"), QString());
    const QCommandLineOption theme(QStringLiteral("theme"), QString(), QStringLiteral("NAME"));
    const QCommandLineOption scale(QStringLiteral("scale"), QString(), QStringLiteral("FACTOR"));
    const QCommandLineOption usageLog(QStringLiteral("usage-log"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption quitAfter(QStringLiteral("quit-after"), QString(), QStringLiteral("MS"));
    const QCommandLineOption serverName(QStringLiteral("server-name"), QString(), QStringLiteral("NAME"));
    const QCommandLineOption drive(QStringLiteral("drive"), QString(), QStringLiteral("DIR"));
    parser.addOptions({help, addon, src, signedOut, theme, scale, usageLog, screenshot, quitAfter,
                       serverName, drive});

    if (arguments.isEmpty()) {
        m_errorString = QStringLiteral("no program name in the argument list");
        return false;
    }
    if (!parser.parse(arguments)) {
        m_errorString = parser.errorText();
        return false;
    }
    if (parser.isSet(help)) {
        m_options.helpRequested = true;
        return true;
    }

    const auto lastValue = [&parser](const QCommandLineOption &option) {
        const QStringList values = parser.values(option);
        return values.isEmpty() ? QString() : values.last();
    };

    m_options.files = parser.positionalArguments();
    m_options.source = lastValue(src);
    m_options.addonPath = lastValue(addon);
    m_options.signedOut = parser.isSet(signedOut);
    m_options.usageLogPath = lastValue(usageLog);
    m_options.screenshotPath = lastValue(screenshot);
    m_options.serverName = lastValue(serverName);
    m_options.driveRoot = lastValue(drive);

    if (parser.isSet(addon) && m_options.addonPath.isEmpty()) {
        m_errorString = QStringLiteral("--addon needs a library path");
        return false;
    }
    if (parser.isSet(usageLog) && m_options.usageLogPath.isEmpty()) {
        m_errorString = QStringLiteral("--usage-log needs a file path");
        return false;
    }
    if (parser.isSet(screenshot) && m_options.screenshotPath.isEmpty()) {
        m_errorString = QStringLiteral("--screenshot needs a file path");
        return false;
    }
    if (parser.isSet(serverName) && m_options.serverName.isEmpty()) {
        m_errorString = QStringLiteral("--server-name needs a name");
        return false;
    }

    if (parser.isSet(drive) && m_options.driveRoot.isEmpty()) {
        m_errorString = QStringLiteral("--drive needs a folder");
        return false;
    }

    if (parser.isSet(theme)) {
        const QString name = lastValue(theme).trimmed().toLower();
        if (name != QLatin1String("light") && name != QLatin1String("dark")) {
            m_errorString = QStringLiteral("--theme takes \"light\" or \"dark\", not \"%1\"")
                                .arg(lastValue(theme));
            return false;
        }
        m_options.theme = name;
    }

    if (parser.isSet(scale)) {
        bool ok = false;
        const double factor = lastValue(scale).toDouble(&ok);
        if (!ok || !(factor >= 0.5 && factor <= 4.0)) {
            m_errorString = QStringLiteral("--scale takes a factor from 0.5 to 4, not \"%1\"")
                                .arg(lastValue(scale));
            return false;
        }
        m_options.scale = factor;
    }

    if (parser.isSet(quitAfter)) {
        bool ok = false;
        const int ms = lastValue(quitAfter).toInt(&ok);
        if (!ok || ms < 0) {
            m_errorString = QStringLiteral("--quit-after takes milliseconds (0 or more), not \"%1\"")
                                .arg(lastValue(quitAfter));
            return false;
        }
        m_options.quitAfterMs = ms;
    } else if (!m_options.screenshotPath.isEmpty()) {
        m_options.quitAfterMs = kDefaultScreenshotDelayMs;
    }
    return true;
}

QString VAppCommandLine::helpText(const QString &programName)
{
    return QStringLiteral(
               "Usage: %1 [options] [documents...]\n"
               "Starts the host with the document merger add-on; the documents are handed to it.\n"
               "When the host already runs for this user, the documents go to that window.\n"
               "\n"
               "Options:\n"
               "  --src TEXT          where the start came from (passed on to the add-on)\n"
               "  --signed-out        start signed out instead of signed in as the local user\n"
               "  --theme light|dark  the theme to start with (default: light)\n"
               "  --scale FACTOR      scale factor for sizes, from 0.5 to 4 (default: the screen's)\n"
               "  --usage-log FILE    append usage events to FILE as JSON lines\n"
               "                      (default: usage.jsonl in the user's state folder)\n"
               "  --addon PATH        load the add-on from PATH\n"
               "                      (default: ../lib/libvdocumentmerger.so beside the program)\n"
               "  --screenshot FILE   save a PNG of the main window and quit\n"
               "  --quit-after MS     quit after MS milliseconds (with --screenshot: take it then;\n"
               "                      default 2000 there)\n"
               "  --server-name NAME  name of the local socket that keeps one instance per user\n"
               "                      (also VAPPHOST_SERVER_NAME)\n"
               "  --drive DIR         folder of the cloud drive service, one folder per user in it\n"
               "                      (default: dalodrive in the user's data folder)\n"
               "  -h, --help          show this help\n"
               "\n"
               "Exit codes: 0 success, 1 bad command line, 2 the add-on could not be loaded,\n"
               "3 the screenshot could not be saved.\n")
        .arg(programName);
}

QString VAppCommandLine::defaultAddonPath(const QString &applicationDirPath)
{
    return QDir::cleanPath(applicationDirPath + QStringLiteral("/../lib/libvdocumentmerger.so"));
}
