#pragma once

#include "vdocumentmerger_export.h"

class QWidget;

namespace AppFrameWork {
class IVAppContainer;
}

// The three functions the host resolves by their plain names after loading the library.
extern "C" {
// True when the controller accepted the container and its main window.
VDOCUMENTMERGER_EXPORT bool Initialize(AppFrameWork::IVAppContainer *container);
// A new client widget owned by parent (through Qt parenthood), or null.
VDOCUMENTMERGER_EXPORT QWidget *CreateClientWidget(QWidget *parent);
// Makes the controller forget the container; the widgets handed out stay alive.
VDOCUMENTMERGER_EXPORT bool Destroy();
}
