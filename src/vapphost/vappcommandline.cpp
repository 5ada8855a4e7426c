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

    if (arguments.isEmpty())
        return fail(QStringLiteral("no program name in the argument list"));
    if (!parser.parse(arguments))
        return fail(parser.errorText());
    if (parser.isSet(help)) {
        m_options.helpRequested = true;
        return true;
    }

    m_options.files = parser.positionalArguments();
    m_options.signedOut = parser.isSet(signedOut);
    m_options.source = lastValue(parser, src);
    const bool textsOk = takeText(parser, addon, QStringLiteral("a library path"), &m_options.addonPath)
        && takeText(parser, usageLog, QStringLiteral("a file path"), &m_options.usageLogPath)
        && takeText(parser, screenshot, QStringLiteral("a file path"), &m_options.screenshotPath)
        && takeText(parser, serverName, QStringLiteral("a name"), &m_options.serverName)
        && takeText(parser, drive, QStringLiteral("a folder"), &m_options.driveRoot);
    return textsOk && takeTheme(parser, theme) && takeScale(parser, scale) && takeQuitAfter(parser, quitAfter);
}

QString VAppCommandLine::lastValue(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    const QStringList values = parser.values(option);
    return values.isEmpty() ? QString() : values.last();
}

bool VAppCommandLine::fail(const QString &error)
{
    m_errorString = error;
    return false;
}

bool VAppCommandLine::takeText(const QCommandLineParser &parser, const QCommandLineOption &option,
                               const QString &what, QString *value)
{
    *value = lastValue(parser, option);
    if (parser.isSet(option) && value->isEmpty())
        return fail(QStringLiteral("--%1 needs %2").arg(option.names().first(), what));
    return true;
}

bool VAppCommandLine::takeTheme(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    if (!parser.isSet(option))
        return true;
    const QString name = lastValue(parser, option).trimmed().toLower();
    if (name != QLatin1String("light") && name != QLatin1String("dark"))
        return fail(QStringLiteral("--theme takes \"light\" or \"dark\", not \"%1\"").arg(lastValue(parser, option)));
    m_options.theme = name;
    return true;
}

bool VAppCommandLine::takeScale(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    if (!parser.isSet(option))
        return true;
    bool ok = false;
    const double factor = lastValue(parser, option).toDouble(&ok);
    if (!ok || !(factor >= 0.5 && factor <= 4.0))
        return fail(QStringLiteral("--scale takes a factor from 0.5 to 4, not \"%1\"").arg(lastValue(parser, option)));
    m_options.scale = factor;
    return true;
}

bool VAppCommandLine::takeQuitAfter(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    if (!parser.isSet(option)) {
        if (!m_options.screenshotPath.isEmpty())
            m_options.quitAfterMs = kDefaultScreenshotDelayMs;
        return true;
    }
    bool ok = false;
    const int ms = lastValue(parser, option).toInt(&ok);
    if (!ok || ms < 0)
        return fail(QStringLiteral("--quit-after takes milliseconds (0 or more), not \"%1\"").arg(lastValue(parser, option)));
    m_options.quitAfterMs = ms;
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
