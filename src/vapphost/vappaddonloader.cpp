#include "vappaddonloader.h"

#include <QFileInfo>
#include <QStringList>

#include "vapplogging.h"

bool VAppAddonLoader::load(const QString &filePath)
{
    m_errorString.clear();
    m_initialize = nullptr;
    m_createClientWidget = nullptr;
    m_destroy = nullptr;

    if (!QFileInfo::exists(filePath)) {
        m_errorString = QStringLiteral("cannot load the add-on: %1 does not exist").arg(filePath);
        return false;
    }
    m_library.setFileName(filePath);
    if (!m_library.load()) {
        m_errorString = QStringLiteral("cannot load the add-on %1: %2")
                            .arg(filePath, m_library.errorString());
        return false;
    }

    const auto initialize = reinterpret_cast<InitializeFn>(m_library.resolve("Initialize"));
    const auto create = reinterpret_cast<CreateClientWidgetFn>(m_library.resolve("CreateClientWidget"));
    const auto destroy = reinterpret_cast<DestroyFn>(m_library.resolve("Destroy"));
    QStringList missing;
    if (!initialize)
        missing << QStringLiteral("Initialize");
    if (!create)
        missing << QStringLiteral("CreateClientWidget");
    if (!destroy)
        missing << QStringLiteral("Destroy");
    if (!missing.isEmpty()) {
        m_errorString = QStringLiteral("the add-on %1 is not usable: it does not export %2")
                            .arg(filePath, missing.join(QStringLiteral(", ")));
        // Left mapped: unloading a library whose static objects already ran is not worth the risk.
        return false;
    }
    m_initialize = initialize;
    m_createClientWidget = create;
    m_destroy = destroy;
    qCInfo(lcVAppHost) << "loaded the add-on" << filePath;
    return true;
}

bool VAppAddonLoader::initialize(AppFrameWork::IVAppContainer *container)
{
    if (!m_initialize)
        return false;
    m_initialized = true;
    return m_initialize(container);
}

QWidget *VAppAddonLoader::createClientWidget(QWidget *parent)
{
    return m_createClientWidget ? m_createClientWidget(parent) : nullptr;
}

bool VAppAddonLoader::destroy()
{
    if (!m_destroy || !m_initialized)
        return false;
    m_initialized = false;
    return m_destroy();
}
