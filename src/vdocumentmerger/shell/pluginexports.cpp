#include "shell/pluginexports.h"

#include "host/ivappcontainer.h"
#include "host/vappmainwindow.h"
#include "shell/cappcontroller.h"

bool Initialize(AppFrameWork::IVAppContainer *container)
{
    CAppController *controller = CAppController::instance();
    if (!controller)
        return false;
    AppFrameWork::IVAppContainer *window = container ? container->mainWindow() : nullptr;
    return controller->initialize(container, dynamic_cast<VAppMainWindow *>(window));
}

QWidget *CreateClientWidget(QWidget *parent)
{
    CAppController *controller = CAppController::instance();
    return controller ? controller->createClientWidget(parent) : nullptr;
}

bool Destroy()
{
    CAppController *controller = CAppController::instance();
    return controller ? controller->uninitialize() : false;
}
