#include "shell/cappcontroller.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QThreadPool>

#include <new>

#include "host/ivappcontainer.h"
#include "host/vappmainwindow.h"
#include "page/vmclientwidget.h"
#include "shell/vmenv.h"
#include "shell/vmworkfolders.h"

namespace {

Q_LOGGING_CATEGORY(lcController, "vdocumentmerger.controller", QtWarningMsg)

// How long shutdown waits for cancelled workers to quit their word processor.
const int kWorkerShutdownMs = 5000;

// Plain pointers: no constructor runs when the host loads the library.
CAppController *s_controller = nullptr;
IAppController *s_appController = nullptr;

} // namespace

IAppController *appController()
{
    return s_appController;
}

CAppController *CAppController::instance()
{
    if (!s_controller) {
        s_controller = new (std::nothrow) CAppController(QCoreApplication::instance());
        s_appController = s_controller;
    }
    return s_controller;
}

CAppController::CAppController(QObject *parent)
    : QObject(parent)
{
}

CAppController::~CAppController()
{
    // The merge page's engine objects cancelled their workers when the widget tree went; a
    // worker still inside a call stops at its next check, and its working files go only after
    // that. At application shutdown the application object has waited for the pool already and
    // there is no pool any more.
    QThreadPool *pool = QThreadPool::globalInstance();
    if (pool && !pool->waitForDone(kWorkerShutdownMs))
        qCWarning(lcController) << "workers still running after" << kWorkerShutdownMs << "ms; removing the working files anyway";
    VMWorkFolders::removeProcessRoot();
    VMEnv::releaseInstance();
    if (s_controller == this) {
        s_controller = nullptr;
        s_appController = nullptr;
    }
}

bool CAppController::initialize(AppFrameWork::IVAppContainer *container, VAppMainWindow *mainWindow)
{
    if (!container || !mainWindow)
        return false;
    m_container = container;
    m_mainWindow = mainWindow;
    m_container->subscribe(QStringLiteral("SkinChanged"), this, "onSkinChanged");
    return true;
}

bool CAppController::uninitialize()
{
    m_container = nullptr;
    return true;
}

AppFrameWork::IVAppContainer *CAppController::container()
{
    return m_container;
}

VAppMainWindow *CAppController::mainWindow()
{
    return m_mainWindow;
}

QWidget *CAppController::createClientWidget(QWidget *parent)
{
    return new VMClientWidget(parent);
}

AppFrameWork::IVAppAccount *CAppController::account()
{
    return m_container ? m_container->account() : nullptr;
}

void CAppController::onSkinChanged(QVariantMap eparam)
{
    Q_UNUSED(eparam)
    emit sigSkinChanged();
}
