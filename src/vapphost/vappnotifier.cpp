#include "vappnotifier.h"

#include <QMetaObject>
#include <QThread>

#include <algorithm>

#include "vapplogging.h"

VAppNotifier::VAppNotifier(QObject *parent)
    : QObject(parent)
{
}

bool VAppNotifier::subscribe(const QString &notification, QObject *receiver, const char *slot)
{
    const QByteArray slotName = normalizedSlotName(slot);
    if (!receiver || notification.isEmpty() || slotName.isEmpty()) {
        qCWarning(lcVAppHost) << "subscription to" << notification << "refused: no receiver or slot";
        return false;
    }
    prune(notification);
    QVector<Subscriber> &list = m_subscribers[notification];
    for (const Subscriber &s : qAsConst(list)) {
        if (s.receiver == receiver && s.slot == slotName)
            return true;
    }
    list.append({QPointer<QObject>(receiver), slotName});
    return true;
}

int VAppNotifier::notify(const QString &notification, const QVariantMap &params)
{
    prune(notification);
    // A slot may subscribe or destroy others while it runs: work on a copy.
    const QVector<Subscriber> list = m_subscribers.value(notification);
    int called = 0;
    for (const Subscriber &s : list) {
        QObject *receiver = s.receiver.data();
        if (!receiver)
            continue;
        const Qt::ConnectionType type = receiver->thread() == QThread::currentThread()
                                            ? Qt::DirectConnection
                                            : Qt::QueuedConnection;
        if (QMetaObject::invokeMethod(receiver, s.slot.constData(), type, Q_ARG(QVariantMap, params)))
            ++called;
        else
            qCWarning(lcVAppHost) << "no slot" << s.slot << "(QVariantMap) on"
                                  << receiver->metaObject()->className() << "for" << notification;
    }
    return called;
}

int VAppNotifier::subscriberCount(const QString &notification) const
{
    int count = 0;
    for (const Subscriber &s : m_subscribers.value(notification)) {
        if (s.receiver)
            ++count;
    }
    return count;
}

QByteArray VAppNotifier::normalizedSlotName(const char *slot)
{
    if (!slot)
        return QByteArray();
    QByteArray name(slot);
    // SLOT(x(QVariantMap)) arrives as "1x(QVariantMap)".
    if (!name.isEmpty() && name.at(0) >= '0' && name.at(0) <= '9')
        name.remove(0, 1);
    const int paren = name.indexOf('(');
    if (paren >= 0)
        name.truncate(paren);
    return name.trimmed();
}

void VAppNotifier::prune(const QString &notification)
{
    auto it = m_subscribers.find(notification);
    if (it == m_subscribers.end())
        return;
    QVector<Subscriber> &list = it.value();
    list.erase(std::remove_if(list.begin(), list.end(),
                              [](const Subscriber &s) { return s.receiver.isNull(); }),
               list.end());
}
