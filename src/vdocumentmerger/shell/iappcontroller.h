#pragma once

#include "vdocumentmerger_export.h"

class QWidget;
class VAppMainWindow;

namespace AppFrameWork {
class IVAppAccount;
class IVAppContainer;
} // namespace AppFrameWork

// What the add-on asks of the application controller: the host's objects and the top-level
// widget. Neither host object is owned.
class IAppController {
public:
    virtual ~IAppController() = default;

    // Stores both pointers and subscribes to the host's skin changes; false (and nothing
    // stored) when either is null.
    virtual bool initialize(AppFrameWork::IVAppContainer *container, VAppMainWindow *mainWindow) = 0;
    // Forgets the container; the main window stays.
    virtual bool uninitialize() = 0;
    virtual AppFrameWork::IVAppContainer *container() = 0;
    virtual VAppMainWindow *mainWindow() = 0;
    // A new client widget with that parent; the caller owns it.
    virtual QWidget *createClientWidget(QWidget *parent) = 0;
    // The container's account object, or null without a container.
    virtual AppFrameWork::IVAppAccount *account() = 0;
};

// The controller as the rest of the add-on reaches the host through it; null until
// CAppController::instance() first ran, and again after the controller is gone.
VDOCUMENTMERGER_EXPORT IAppController *appController();
