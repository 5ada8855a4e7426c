// A stand-in add-on for the host's process tests. It reports what the host offers through
// the host's own usage log, so a test reads one file to see the whole conversation.
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPointer>
#include <QVariantMap>

#include "host/ivappaccount.h"
#include "host/ivappcontainer.h"
#include "host/vappmainwindow.h"

namespace {

// Receives the host's notifications by slot name and writes each back as a usage event.
class ProbeRecorder : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    AppFrameWork::IVAppContainer *container = nullptr;

    void record(const QString &name, const QVariantMap &params)
    {
        QHash<QString, QString> flat;
        for (auto it = params.cbegin(); it != params.cend(); ++it)
            flat.insert(it.key(), it.value().toString());
        if (container)
            container->postEvent(name, flat);
    }

public slots:
    void onSkinChanged(QVariantMap params) { record(QStringLiteral("probe_skin_changed"), params); }
    void onSecondInstance(QVariantMap params) { record(QStringLiteral("probe_second_instance"), params); }
};

QPointer<ProbeRecorder> g_recorder;

} // namespace

extern "C" Q_DECL_EXPORT bool Initialize(AppFrameWork::IVAppContainer *container)
{
    if (!container)
        return false;
    auto *window = dynamic_cast<VAppMainWindow *>(container->mainWindow());
    if (!g_recorder)
        g_recorder = new ProbeRecorder(QCoreApplication::instance());
    g_recorder->container = container;

    QHash<QString, QString> params;
    params.insert(QStringLiteral("main_window"), window ? QStringLiteral("VAppMainWindow")
                                                        : QStringLiteral("none"));
    const AppFrameWork::VAppStartInfo *start = container->startInfo();
    params.insert(QStringLiteral("src"), start ? start->source : QStringLiteral("<null>"));
    params.insert(QStringLiteral("files"), start ? QString::fromUtf8(QJsonDocument::fromVariant(
                                                       start->files).toJson(QJsonDocument::Compact))
                                                 : QStringLiteral("<null>"));
    AppFrameWork::IVAppAccount *account = container->account();
    AppFrameWork::VAppUserInfo info;
    if (account)
        account->userInfo(info);
    params.insert(QStringLiteral("signed_in"),
                  account && account->isLogin() ? QStringLiteral("1") : QStringLiteral("0"));
    params.insert(QStringLiteral("user_id"), info.userId);
    container->postEvent(QStringLiteral("probe_initialize"), params);

    container->subscribe(QStringLiteral("SkinChanged"), g_recorder, "onSkinChanged");
    container->subscribe(QStringLiteral("SecondInstance"), g_recorder, "onSecondInstance");
    return window != nullptr;
}

extern "C" Q_DECL_EXPORT QWidget *CreateClientWidget(QWidget *parent)
{
    auto *label = new QLabel(QStringLiteral("probe add-on"), parent);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

extern "C" Q_DECL_EXPORT bool Destroy()
{
    if (!g_recorder)
        return false;
    g_recorder->record(QStringLiteral("probe_destroy"), QVariantMap());
    g_recorder->container = nullptr;
    return true;
}

#include "probeaddon.moc"
