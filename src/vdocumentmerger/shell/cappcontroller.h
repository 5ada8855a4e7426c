#pragma once

#include <QObject>
#include <QVariantMap>

#include "shell/iappcontroller.h"
#include "vdocumentmerger_export.h"

// The process-wide application controller. Its parent is the application object, which
// deletes it at shutdown; the destructor waits a few seconds for running workers to end, then
// removes this process's working tree and releases VMEnv.
class VDOCUMENTMERGER_EXPORT CAppController : public QObject, public IAppController {
    Q_OBJECT
public:
    // Created on the first call, as a child of QCoreApplication::instance().
    static CAppController *instance();

    ~CAppController() override;

    bool initialize(AppFrameWork::IVAppContainer *container, VAppMainWindow *mainWindow) override;
    bool uninitialize() override;
    AppFrameWork::IVAppContainer *container() override;
    VAppMainWindow *mainWindow() override;
    QWidget *createClientWidget(QWidget *parent) override;
    AppFrameWork::IVAppAccount *account() override;

signals:
    void sigSkinChanged();

public slots:
    // Invoked by the host, by name, on "SkinChanged".
    void onSkinChanged(QVariantMap eparam);

private:
    explicit CAppController(QObject *parent);

    AppFrameWork::IVAppContainer *m_container = nullptr;
    VAppMainWindow *m_mainWindow = nullptr;
};
