#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantMap>

#include "host/ivappcontainer.h"
#include "vappaccount.h"
#include "vappnotifier.h"
#include "vappusagelog.h"
#include "vapphost_export.h"

class QMainWindow;
class VAppMainWindow;

// The application container handed to the add-on. It owns the account, the start record,
// the usage log and the notification subscribers; the main window is only known.
class VAPPHOST_EXPORT VAppContainer : public QObject, public AppFrameWork::IVAppContainer {
    Q_OBJECT
public:
    explicit VAppContainer(QObject *parent = nullptr);

    AppFrameWork::IVAppAccount *account() override;
    const AppFrameWork::VAppStartInfo *startInfo() override;
    void postEvent(const QString &name, const QHash<QString, QString> &params) override;
    void subscribe(const QString &notification, QObject *receiver, const char *slot) override;
    // The main window while it exists, else null.
    AppFrameWork::IVAppContainer *mainWindow() override;

    void setStartInfo(const QString &source, const QStringList &files);
    void setUsageLogPath(const QString &filePath);
    void setMainWindow(VAppMainWindow *window);

    VAppAccount *hostAccount() { return &m_account; }
    VAppNotifier *notifier() { return &m_notifier; }
    QString usageLogPath() const { return m_usageLog.filePath(); }

    // Returns how many subscribers were called.
    int notify(const QString &notification, const QVariantMap &params);
    // Passes files from a later start on to the "SecondInstance" subscribers.
    int deliverSecondInstance(const QStringList &files);

    // {"file":"<files joined by |>"} as compact JSON text.
    static QString secondInstanceArgs(const QStringList &files);

private:
    VAppAccount m_account;
    VAppNotifier m_notifier;
    VAppUsageLog m_usageLog;
    AppFrameWork::VAppStartInfo m_startInfo;
    QPointer<QMainWindow> m_window;
    VAppMainWindow *m_mainWindow = nullptr;
};
