#include "shell/cappcontroller.h"

#include <QCoreApplication>

#include <new>

#include "host/ivappcontainer.h"
#include "host/vappmainwindow.h"
#include "page/vmclientwidget.h"
#include "shell/vmenv.h"
#include "shell/vmworkfolders.h"

namespace {

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
