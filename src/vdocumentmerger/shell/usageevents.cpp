#include "shell/usageevents.h"

#include "host/ivappcontainer.h"
#include "shell/iappcontroller.h"

void sendUsageEvent(const QString &name, const QHash<QString, QString> &params)
{
    IAppController *controller = appController();
    AppFrameWork::IVAppContainer *container = controller ? controller->container() : nullptr;
    if (container)
        container->postEvent(name, params);
}

void sendClickEvent(const QHash<QString, QString> &params)
{
    sendUsageEvent(QStringLiteral("vas_wordmerge_click"), params);
}

void sendPopupEvent(const QString &type, const QString &action)
{
    sendUsageEvent(QStringLiteral("vas_wordmerge_popup"),
                   {{QStringLiteral("type"), type}, {QStringLiteral("action"), action}});
}
