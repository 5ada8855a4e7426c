#include "vapphostapplication.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QMessageBox>
#include <QPixmap>
#include <QTimer>

#include <cstdio>

#include "daloconfig.h"
#include "dalodriveprocess.h"
#include "vappaddonloader.h"
#include "vappcommandline.h"
#include "vappcontainer.h"
#include "vapphostwindow.h"
#include "vapplogging.h"
#include "vappquitsignals.h"
#include "vappsingleinstance.h"
#include "vapptheme.h"

namespace {

void printError(const QString &text)
{
    std::fprintf(stderr, "vapphost: %s\n", qPrintable(text));
    std::fflush(stderr);
}

bool hasDisplayEnvironment()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
           || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

bool isOnScreen()
{
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

using Options = VAppCommandLine::Options;

// A screenshot run always opens its own window. It serves later starts only under a name given
// explicitly, so that it never takes the user's own host name. True when the files went to a
// host that already runs, and this start is over.
bool handedToRunningHost(VAppSingleInstance &instance, const Options &options, bool explicitName)
{
    const bool screenshotRun = !options.screenshotPath.isEmpty();
    if (!screenshotRun) {
        const QStringList handed = VAppSingleInstance::absolutePaths(options.files, QDir::currentPath());
        // The second try covers a host that started listening between our two steps.
        if (instance.handOver(handed) || (!instance.listen() && instance.handOver(handed))) {
            qCInfo(lcVAppHost) << "handed the files to the running host on" << instance.serverName();
            return true;
        }
    } else if (explicitName) {
        instance.listen();
    }
    if (!instance.isListening() && (!screenshotRun || explicitName))
        qCWarning(lcVAppHost) << "later starts will open their own window:" << instance.errorString();
    return false;
}

QString serverNameFor(const Options &options)
{
    if (!options.serverName.isEmpty())
        return options.serverName;
    return QString::fromLocal8Bit(qgetenv("VAPPHOST_SERVER_NAME"));
}

void prepareContainer(VAppContainer &container, const Options &options)
{
    container.setStartInfo(options.source, options.files);
    container.setUsageLogPath(options.usageLogPath.isEmpty() ? VAppUsageLog::defaultFilePath()
                                                             : options.usageLogPath);
    if (!options.signedOut)
        container.hostAccount()->signIn(VAppAccount::localUserName());
}

// False, after telling the user, when the add-on cannot be loaded.
bool loadAddon(VAppAddonLoader &addon, const Options &options, VAppContainer &container, VAppHostWindow &window)
{
    const QString addonPath = options.addonPath.isEmpty()
                                  ? VAppCommandLine::defaultAddonPath(QCoreApplication::applicationDirPath())
                                  : options.addonPath;
    if (!addon.load(addonPath)) {
        printError(addon.errorString());
        if (isOnScreen() && options.screenshotPath.isEmpty())
            QMessageBox::critical(nullptr, QObject::tr("Document Merger"), addon.errorString());
        return false;
    }
    if (!addon.initialize(&container))
        qCWarning(lcVAppHost) << "the add-on did not accept the host; it runs without it";
    window.setClientWidget(addon.createClientWidget(&window));
    return true;
}

// After --quit-after: saves the screenshot when one is asked for, then ends the loop.
void quitAfterDelay(const Options &options, VAppHostWindow &window, int &exitCode)
{
    QTimer::singleShot(options.quitAfterMs, &window, [&options, &window, &exitCode] {
        if (!options.screenshotPath.isEmpty()) {
            const QPixmap shot = window.grab();
            const QString target = QFileInfo(options.screenshotPath).absoluteFilePath();
            QDir().mkpath(QFileInfo(target).absolutePath());
            if (shot.isNull() || !shot.save(target, "PNG")) {
                printError(QStringLiteral("cannot save the screenshot to %1").arg(target));
                exitCode = VAppHostApplication::ExitScreenshot;
            } else {
                qCInfo(lcVAppHost) << "saved the screenshot to" << target;
            }
        }
        window.close();
        QCoreApplication::quit();
    });
}

} // namespace

int VAppHostApplication::run(int &argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);

    VAppCommandLine commandLine;
    if (!commandLine.parse(arguments)) {
        printError(commandLine.errorString() + QStringLiteral("\nTry \"vapphost --help\"."));
        return ExitUsage;
    }
    const Options &options = commandLine.options();
    if (options.helpRequested) {
        std::fputs(qPrintable(VAppCommandLine::helpText(QFileInfo(arguments.first()).fileName())), stdout);
        return ExitOk;
    }
    const bool timed = options.quitAfterMs >= 0;
    if (!hasDisplayEnvironment()) {
        if (!timed) {
            printError(QStringLiteral("no display to show the window on (set DISPLAY, or use "
                                      "--screenshot or --quit-after to run without one)"));
            return ExitUsage;
        }
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vapphost"));
    QApplication::setApplicationVersion(QStringLiteral(VAPPHOST_VERSION));
    // The event loop must outlive the add-on's dialogs being closed.
    QApplication::setQuitOnLastWindowClosed(false);
    // Watched from here on; a signal before the window exists waits in the pipe until then.
    VAppQuitSignals quitSignals;

    const QString explicitName = serverNameFor(options);
    VAppSingleInstance instance(explicitName.isEmpty() ? VAppSingleInstance::defaultServerName(VAppAccount::localUserName())
                                                       : explicitName);
    if (handedToRunningHost(instance, options, !explicitName.isEmpty()))
        return ExitOk;

    if (options.scale > 0)
        VAppTheme::setScale(options.scale);
    VAppTheme::apply(options.theme);

    VAppContainer container;
    prepareContainer(container, options);

    // The cloud drive service lives as long as the host and serves whoever is signed in. A host
    // under an explicit instance name gets a drive socket of that name, so that it never takes
    // over the user's own; a screenshot run under the default name starts none.
    if (!options.driveRoot.isEmpty())
        DaloConfig::setDriveRoot(QFileInfo(options.driveRoot).absoluteFilePath());
    if (!explicitName.isEmpty() && qEnvironmentVariableIsEmpty("DALO_DRIVE_SOCKET"))
        DaloConfig::setSocketName(DaloConfig::socketPath(explicitName + QStringLiteral("-drive")));
    VAppAccount *account = container.hostAccount();
    const auto signedInUser = [account] {
        AppFrameWork::VAppUserInfo info;
        account->userInfo(info);
        return info.userId;
    };
    DaloDriveProcess drive;
    const bool screenshotRun = !options.screenshotPath.isEmpty();
    if ((!screenshotRun || !explicitName.isEmpty()) && !drive.start(signedInUser()))
        qCWarning(lcVAppHost) << "cloud requests will start their own service:" << drive.errorString();
    QObject::connect(account, &VAppAccount::loginChanged, &drive,
                     [&drive, signedInUser] { drive.setUser(signedInUser()); });

    VAppHostWindow window(&container);
    container.setMainWindow(&window);
    VAppAddonLoader addon;
    if (!loadAddon(addon, options, container, window))
        return ExitAddon;

    QObject::connect(&instance, &VAppSingleInstance::filesReceived, &window,
                     [&container, &window](const QStringList &files) {
                         if (!files.isEmpty())
                             container.deliverSecondInstance(files);
                         window.bringToFront();
                     });
    QObject::connect(&window, &VAppHostWindow::closing, &app, [&addon] {
        addon.destroy();
        QCoreApplication::quit();
    });
    QObject::connect(&quitSignals, &VAppQuitSignals::quitRequested, &window, [&window] {
        window.close();
        QCoreApplication::quit();
    });

    window.show();
    int exitCode = ExitOk;
    if (timed)
        quitAfterDelay(options, window, exitCode);
    const int loopCode = app.exec();
    addon.destroy();
    return exitCode != ExitOk ? exitCode : loopCode;
}
