#pragma once

#include <QLibrary>
#include <QString>

#include "vapphost_export.h"

class QWidget;

namespace AppFrameWork {
class IVAppContainer;
}

// Loads the add-on library and calls its three entry points. The library stays loaded for
// the life of the process: objects it made (parented to the application) outlive this loader.
class VAPPHOST_EXPORT VAppAddonLoader {
public:
    VAppAddonLoader() = default;
    VAppAddonLoader(const VAppAddonLoader &) = delete;
    VAppAddonLoader &operator=(const VAppAddonLoader &) = delete;

    // Returns false and sets errorString() when the library cannot be loaded or lacks one of
    // the entry points.
    bool load(const QString &filePath);
    bool isLoaded() const { return m_initialize && m_createClientWidget && m_destroy; }
    QString errorString() const { return m_errorString; }

    // Each returns the entry point's answer, or false/null when nothing is loaded.
    bool initialize(AppFrameWork::IVAppContainer *container);
    // The caller gets the widget with parent as its parent.
    QWidget *createClientWidget(QWidget *parent);
    // Calls the add-on's Destroy once after initialize(); later calls return false.
    bool destroy();

private:
    using InitializeFn = bool (*)(AppFrameWork::IVAppContainer *);
    using CreateClientWidgetFn = QWidget *(*)(QWidget *);
    using DestroyFn = bool (*)();

    QLibrary m_library;
    QString m_errorString;
    InitializeFn m_initialize = nullptr;
    CreateClientWidgetFn m_createClientWidget = nullptr;
    DestroyFn m_destroy = nullptr;
    bool m_initialized = false;
};
