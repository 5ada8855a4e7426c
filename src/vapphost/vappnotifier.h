#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>
#include <QVector>

#include "vapphost_export.h"

// Host notifications: receivers subscribe with a slot name and are called by that name with
// one QVariantMap. Receivers that were destroyed since they subscribed are skipped.
class VAPPHOST_EXPORT VAppNotifier : public QObject {
    Q_OBJECT
public:
    explicit VAppNotifier(QObject *parent = nullptr);

    // slot may be a plain name ("onSkinChanged") or a SLOT() signature. Subscribing the same
    // receiver and slot to a notification twice still gives one call per notification.
    // Returns false for a null receiver or an empty name.
    bool subscribe(const QString &notification, QObject *receiver, const char *slot);

    // Calls every live subscriber of notification, in subscription order, on the receiver's
    // thread (directly when that is the calling thread). Returns how many were called.
    int notify(const QString &notification, const QVariantMap &params);

    int subscriberCount(const QString &notification) const;

    static QByteArray normalizedSlotName(const char *slot);

private:
    struct Subscriber {
        QPointer<QObject> receiver;
        QByteArray slot;
    };

    void prune(const QString &notification);

    QHash<QString, QVector<Subscriber>> m_subscribers;
};
