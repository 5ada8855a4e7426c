#include <QtTest>

#include <QThread>

#include "vappnotifier.h"

// Receives notifications by slot name and remembers them in call order.
class Receiver : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    QStringList calls;
    QVector<QVariantMap> maps;
    QVector<QThread *> threads;

public slots:
    void onSkinChanged(QVariantMap params) { take(QStringLiteral("onSkinChanged"), params); }
    void onSecondInstance(QVariantMap params) { take(QStringLiteral("onSecondInstance"), params); }
    void onOther(QVariantMap params) { take(QStringLiteral("onOther"), params); }
    void noArguments() { calls << QStringLiteral("noArguments"); }

private:
    void take(const QString &slot, const QVariantMap &params)
    {
        calls << slot;
        maps << params;
        threads << QThread::currentThread();
    }
};

// A receiver that destroys another while it is being notified.
class Destroyer : public QObject {
    Q_OBJECT
public:
    QObject *victim = nullptr;
public slots:
    void onSkinChanged(QVariantMap) { delete victim; victim = nullptr; }
};

class tst_VAppNotifier : public QObject {
    Q_OBJECT
private slots:
    void deliversBySlotName_data();
    void deliversBySlotName();
    void destroyedSubscribersSkipped();
    void invalidSubscriptionsRefused();
    void duplicatesOnceAndMissingSlotsSkipped();
    void receiverOnAnotherThreadCalledThere();
};

void tst_VAppNotifier::deliversBySlotName_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QString>("notification");
    QTest::addColumn<QVariantMap>("params");
    QTest::addColumn<QString>("expectedSlot");

    QTest::newRow("slot_macro_form") << QByteArray(SLOT(onSkinChanged(QVariantMap))) << "SkinChanged"
                                     << QVariantMap{{"skin", "light"}} << "onSkinChanged";
    QTest::newRow("signature_without_macro_code_several_keys_and_types")
        << QByteArray("onOther(QVariantMap)") << "Custom"
        << QVariantMap{{"n", 3}, {"flag", true}, {"list", QStringList{"x", "y"}}} << "onOther";
}

void tst_VAppNotifier::deliversBySlotName()
{
    QFETCH(QByteArray, slot);
    QFETCH(QString, notification);
    QFETCH(QVariantMap, params);
    QFETCH(QString, expectedSlot);

    VAppNotifier notifier;
    Receiver receiver;
    Receiver bystander;
    QVERIFY(notifier.subscribe(notification, &receiver, slot.constData()));
    QVERIFY(notifier.subscribe(QStringLiteral("Unrelated"), &bystander, "onOther"));

    QCOMPARE(notifier.notify(notification, params), 1);
    QCOMPARE(receiver.calls, QStringList{expectedSlot});
    QCOMPARE(receiver.maps.first(), params);
    QCOMPARE(receiver.threads.first(), QThread::currentThread());
    QVERIFY(bystander.calls.isEmpty());

    QCOMPARE(notifier.notify(QStringLiteral("NobodyListens"), params), 0);
    QCOMPARE(receiver.calls.size(), 1);
}

void tst_VAppNotifier::destroyedSubscribersSkipped()
{
    VAppNotifier notifier;
    Receiver first;
    auto *gone = new Receiver;
    Destroyer destroyer;
    destroyer.victim = new Receiver;
    QVERIFY(notifier.subscribe("SkinChanged", &first, "onSkinChanged"));
    QVERIFY(notifier.subscribe("SkinChanged", gone, "onSkinChanged"));
    QVERIFY(notifier.subscribe("SkinChanged", &destroyer, "onSkinChanged"));
    // Destroyed by the one before it while the notification is under way.
    QVERIFY(notifier.subscribe("SkinChanged", destroyer.victim, "onSkinChanged"));
    QCOMPARE(notifier.subscriberCount("SkinChanged"), 4);
    delete gone;
    QCOMPARE(notifier.subscriberCount("SkinChanged"), 3);

    QCOMPARE(notifier.notify("SkinChanged", {{"skin", "dark"}}), 2);
    QCOMPARE(first.calls, QStringList{"onSkinChanged"});
    QVERIFY(!destroyer.victim);
    QCOMPARE(notifier.subscriberCount("SkinChanged"), 2);
}

void tst_VAppNotifier::invalidSubscriptionsRefused()
{
    VAppNotifier notifier;
    Receiver receiver;
    const struct {
        const char *notification;
        QObject *receiver;
        const char *slot;
    } cases[] = {
        {"SkinChanged", nullptr, "onSkinChanged"},
        {"SkinChanged", &receiver, nullptr},
        {"SkinChanged", &receiver, ""},
        {"", &receiver, "onSkinChanged"},
    };
    for (const auto &c : cases) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused"));
        QVERIFY(!notifier.subscribe(c.notification, c.receiver, c.slot));
        QCOMPARE(notifier.subscriberCount(c.notification), 0);
    }
    QVERIFY(receiver.calls.isEmpty());
}

void tst_VAppNotifier::duplicatesOnceAndMissingSlotsSkipped()
{
    VAppNotifier notifier;
    Receiver wrong;
    Receiver right;
    QVERIFY(notifier.subscribe("SkinChanged", &wrong, "noSuchSlot"));
    QVERIFY(notifier.subscribe("SkinChanged", &wrong, "noArguments"));
    QVERIFY(notifier.subscribe("SkinChanged", &right, "onSkinChanged"));
    QVERIFY(notifier.subscribe("SkinChanged", &right, SLOT(onSkinChanged(QVariantMap))));
    QVERIFY(notifier.subscribe("SkinChanged", &right, "onOther"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("noSuchSlot"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("noArguments"));
    QCOMPARE(notifier.notify("SkinChanged", {{"skin", "dark"}}), 2);
    QVERIFY(wrong.calls.isEmpty());
    QCOMPARE(right.calls, (QStringList{"onSkinChanged", "onOther"}));
}

void tst_VAppNotifier::receiverOnAnotherThreadCalledThere()
{
    QThread worker;
    worker.start();
    auto stop = qScopeGuard([&worker] { worker.quit(); worker.wait(); });
    auto *receiver = new Receiver;
    receiver->moveToThread(&worker);
    connect(&worker, &QThread::finished, receiver, &QObject::deleteLater);

    VAppNotifier notifier;
    QVERIFY(notifier.subscribe("SkinChanged", receiver, "onSkinChanged"));
    QCOMPARE(notifier.notify("SkinChanged", {{"skin", "dark"}}), 1);
    int calls = 0;
    QThread *calledOn = nullptr;
    QVariantMap params;
    QTRY_VERIFY([&] {
        QMetaObject::invokeMethod(receiver, [&] {
            calls = receiver->calls.size();
            calledOn = calls ? receiver->threads.first() : nullptr;
            params = calls ? receiver->maps.first() : QVariantMap();
        }, Qt::BlockingQueuedConnection);
        return calls == 1;
    }());
    QCOMPARE(calledOn, &worker);
    QCOMPARE(params, (QVariantMap{{"skin", "dark"}}));
}

QTEST_GUILESS_MAIN(tst_VAppNotifier)
#include "tst_vappnotifier.moc"
