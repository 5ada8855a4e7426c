#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include "host/ivappcontainer.h"

// An application container that records what the add-on posts and subscribes to, and
// delivers notifications by slot name the way the host does.
class FakeAppContainer : public AppFrameWork::IVAppContainer {
public:
    struct Event {
        QString name;
        QHash<QString, QString> params;
    };
    struct Subscription {
        QString notification;
        QPointer<QObject> receiver;
        QByteArray slot;
    };

    void setAccount(AppFrameWork::IVAppAccount *account) { m_account = account; }
    void setMainWindow(AppFrameWork::IVAppContainer *window) { m_mainWindow = window; }
    void setStartSource(const QString &source) { m_startInfo.source = source; }
    void setStartFiles(const QStringList &files) { m_startInfo.files = files; }

    const QList<Event> &events() const { return m_events; }
    QList<Event> eventsNamed(const QString &name) const
    {
        QList<Event> found;
        for (const Event &e : m_events) {
            if (e.name == name)
                found.append(e);
        }
        return found;
    }
    void clearEvents() { m_events.clear(); }
    const QList<Subscription> &subscriptions() const { return m_subscriptions; }

    // Invokes every live receiver subscribed to notification; returns how many were reached.
    int notify(const QString &notification, const QVariantMap &params)
    {
        int reached = 0;
        for (const Subscription &s : m_subscriptions) {
            if (s.notification != notification || !s.receiver)
                continue;
            if (QMetaObject::invokeMethod(s.receiver, s.slot.constData(), Qt::DirectConnection,
                                          Q_ARG(QVariantMap, params)))
                ++reached;
        }
        return reached;
    }

    AppFrameWork::IVAppAccount *account() override { return m_account; }
    const AppFrameWork::VAppStartInfo *startInfo() override { return &m_startInfo; }
    void postEvent(const QString &name, const QHash<QString, QString> &params) override
    {
        m_events.append({name, params});
    }
    void subscribe(const QString &notification, QObject *receiver, const char *slot) override
    {
        m_subscriptions.append({notification, receiver, QByteArray(slot)});
    }
    AppFrameWork::IVAppContainer *mainWindow() override { return m_mainWindow; }

private:
    AppFrameWork::IVAppAccount *m_account = nullptr;
    AppFrameWork::IVAppContainer *m_mainWindow = nullptr;
    AppFrameWork::VAppStartInfo m_startInfo;
    QList<Event> m_events;
    QList<Subscription> m_subscriptions;
};
