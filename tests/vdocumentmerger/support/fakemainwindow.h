#pragma once

#include "fakeappaccount.h"
#include "fakeappcontainer.h"
#include "host/vappmainwindow.h"
#include "shell/pluginexports.h"

// A host main window that answers as a container by passing every call to the
// application container it belongs to.
class FakeMainWindow : public VAppMainWindow {
public:
    explicit FakeMainWindow(FakeAppContainer *app)
        : m_app(app)
    {
        m_app->setMainWindow(this);
    }

    AppFrameWork::IVAppAccount *account() override { return m_app->account(); }
    const AppFrameWork::VAppStartInfo *startInfo() override { return m_app->startInfo(); }
    void postEvent(const QString &name, const QHash<QString, QString> &params) override
    {
        m_app->postEvent(name, params);
    }
    void subscribe(const QString &notification, QObject *receiver, const char *slot) override
    {
        m_app->subscribe(notification, receiver, slot);
    }
    AppFrameWork::IVAppContainer *mainWindow() override { return this; }

private:
    FakeAppContainer *m_app;
};

// A host with its container, account and main window (make it after the application object).
struct FakeHost {
    FakeAppContainer app;
    FakeAppAccount account;
    FakeMainWindow window{&app};

    FakeHost() { app.setAccount(&account); }
};

// A host with the add-on initialised on it for the life of the object.
struct InitializedHost : FakeHost {
    InitializedHost() { Initialize(&app); }
    ~InitializedHost() { Destroy(); }
};
