#pragma once

#include <QPointer>

#include "host/vappmainwindow.h"
#include "vapphost_export.h"

class QAction;
class QCloseEvent;
class VAppContainer;

// The host's main window: menus for the account, the theme and help, and the add-on's
// widget in the middle. As a container it answers for the application container it shows.
class VAPPHOST_EXPORT VAppHostWindow : public VAppMainWindow {
    Q_OBJECT
public:
    // container must outlive the window.
    explicit VAppHostWindow(VAppContainer *container, QWidget *parent = nullptr);
    ~VAppHostWindow() override;

    AppFrameWork::IVAppAccount *account() override;
    const AppFrameWork::VAppStartInfo *startInfo() override;
    void postEvent(const QString &name, const QHash<QString, QString> &params) override;
    void subscribe(const QString &notification, QObject *receiver, const char *slot) override;
    // This window.
    AppFrameWork::IVAppContainer *mainWindow() override;

    // Takes ownership; null shows a notice in the middle instead.
    void setClientWidget(QWidget *widget);

    // Applies "light" or "dark" and tells the "SkinChanged" subscribers with {"skin": name}.
    // Returns false for an unknown name.
    bool setTheme(const QString &name);
    QString theme() const { return m_theme; }

    // Brings the window to the front, restoring it when minimised.
    void bringToFront();

    QAction *signInAction() const { return m_signInAction; }
    QAction *signOutAction() const { return m_signOutAction; }
    QAction *lightThemeAction() const { return m_lightAction; }
    QAction *darkThemeAction() const { return m_darkAction; }

signals:
    void themeChanged(const QString &name);
    // Emitted once, when the window is about to close.
    void closing();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void createMenus();
    void updateAccountActions();
    void showAbout();

    VAppContainer *m_container;
    QString m_theme;
    bool m_closingSent = false;
    QAction *m_accountStateAction = nullptr;
    QAction *m_signInAction = nullptr;
    QAction *m_signOutAction = nullptr;
    QAction *m_lightAction = nullptr;
    QAction *m_darkAction = nullptr;
};
