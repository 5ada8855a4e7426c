#include "vapphostwindow.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>

#include <liolite/vlitestyle.h>

#include "vappcontainer.h"
#include "vapplogging.h"
#include "vapptheme.h"

VAppHostWindow::VAppHostWindow(VAppContainer *container, QWidget *parent)
    : VAppMainWindow(parent)
    , m_container(container)
    , m_theme(VAppTheme::current())
{
    setObjectName(QStringLiteral("VAppHostWindow"));
    setWindowTitle(tr("Document Merger"));
    createMenus();

    QSize size = VLiteStyle::dpiScaledSize(1100, 720);
    // The offscreen platform's nominal screen is small; its windows need not fit it.
    const QString platform = QGuiApplication::platformName();
    const bool realScreen = platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
    if (const QScreen *screen = QGuiApplication::primaryScreen(); screen && realScreen)
        size = size.boundedTo(screen->availableGeometry().size());
    resize(size);

    connect(m_container->hostAccount(), &VAppAccount::loginChanged, this,
            &VAppHostWindow::updateAccountActions);
    updateAccountActions();
}

VAppHostWindow::~VAppHostWindow() = default;

AppFrameWork::IVAppAccount *VAppHostWindow::account()
{
    return m_container->account();
}

const AppFrameWork::VAppStartInfo *VAppHostWindow::startInfo()
{
    return m_container->startInfo();
}

void VAppHostWindow::postEvent(const QString &name, const QHash<QString, QString> &params)
{
    m_container->postEvent(name, params);
}

void VAppHostWindow::subscribe(const QString &notification, QObject *receiver, const char *slot)
{
    m_container->subscribe(notification, receiver, slot);
}

AppFrameWork::IVAppContainer *VAppHostWindow::mainWindow()
{
    return this;
}

void VAppHostWindow::setClientWidget(QWidget *widget)
{
    if (!widget) {
        auto *notice = new QLabel(tr("The document merger could not create its window."), this);
        notice->setAlignment(Qt::AlignCenter);
        notice->setObjectName(QStringLiteral("clientWidgetMissing"));
        widget = notice;
    }
    setCentralWidget(widget);
}

bool VAppHostWindow::setTheme(const QString &name)
{
    if (!VAppTheme::apply(name))
        return false;
    const bool changed = name != m_theme;
    m_theme = name;
    m_lightAction->setChecked(name == QLatin1String("light"));
    m_darkAction->setChecked(name == QLatin1String("dark"));
    if (changed) {
        QVariantMap params;
        params.insert(QStringLiteral("skin"), name);
        m_container->notify(QStringLiteral("SkinChanged"), params);
        emit themeChanged(name);
    }
    return true;
}

void VAppHostWindow::bringToFront()
{
    if (isMinimized())
        setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}

void VAppHostWindow::closeEvent(QCloseEvent *event)
{
    VAppMainWindow::closeEvent(event);
    if (event->isAccepted() && !m_closingSent) {
        m_closingSent = true;
        emit closing();
    }
}

void VAppHostWindow::createMenus()
{
    QMenu *accountMenu = menuBar()->addMenu(tr("&Account"));
    m_accountStateAction = accountMenu->addAction(QString());
    m_accountStateAction->setEnabled(false);
    accountMenu->addSeparator();
    m_signInAction = accountMenu->addAction(tr("Sign &in..."));
    m_signOutAction = accountMenu->addAction(tr("Sign &out"));
    accountMenu->addSeparator();
    QAction *quitAction = accountMenu->addAction(tr("&Quit"));
    quitAction->setShortcut(QKeySequence::Quit);
    connect(m_signInAction, &QAction::triggered, this,
            [this] { m_container->hostAccount()->login(QVariantMap()); });
    connect(m_signOutAction, &QAction::triggered, this,
            [this] { m_container->hostAccount()->signOut(); });
    connect(quitAction, &QAction::triggered, this, &QWidget::close);

    QMenu *viewMenu = menuBar()->addMenu(tr("&View"));
    auto *themes = new QActionGroup(this);
    m_lightAction = viewMenu->addAction(tr("&Light theme"));
    m_darkAction = viewMenu->addAction(tr("&Dark theme"));
    for (QAction *action : {m_lightAction, m_darkAction}) {
        action->setCheckable(true);
        themes->addAction(action);
    }
    m_lightAction->setChecked(m_theme != QLatin1String("dark"));
    m_darkAction->setChecked(m_theme == QLatin1String("dark"));
    connect(m_lightAction, &QAction::triggered, this, [this] { setTheme(QStringLiteral("light")); });
    connect(m_darkAction, &QAction::triggered, this, [this] { setTheme(QStringLiteral("dark")); });

    QMenu *helpMenu = menuBar()->addMenu(tr("&Help"));
    QAction *aboutAction = helpMenu->addAction(tr("&About..."));
    connect(aboutAction, &QAction::triggered, this, &VAppHostWindow::showAbout);
}

void VAppHostWindow::updateAccountActions()
{
    AppFrameWork::VAppUserInfo info;
    VAppAccount *account = m_container->hostAccount();
    account->userInfo(info);
    const bool signedIn = account->isLogin();
    m_accountStateAction->setText(signedIn ? tr("Signed in as %1").arg(info.userId)
                                           : tr("Not signed in"));
    m_signInAction->setEnabled(!signedIn);
    m_signOutAction->setEnabled(signedIn);
}

void VAppHostWindow::showAbout()
{
    QMessageBox::about(this, tr("About Document Merger"),
                       tr("<p><b>Document Merger</b> %1</p>"
                          "<p>Merges page ranges of several .doc, .docx and .zyl documents into one.</p>"
                          "<p>Host application with Qt %2.</p>")
                           .arg(QCoreApplication::applicationVersion(), QString::fromLatin1(qVersion())));
}
