#include "shell/hostservices.h"

#include <QVariantMap>

#include "host/ivappaccount.h"
#include "host/ivappcontainer.h"
#include "shell/iappcontroller.h"

namespace {

AppFrameWork::IVAppAccount *hostAccount()
{
    IAppController *controller = appController();
    return controller ? controller->account() : nullptr;
}

} // namespace

bool isLoggedIn()
{
    AppFrameWork::IVAppAccount *account = hostAccount();
    return account && account->isLogin();
}

void requestLogin()
{
    AppFrameWork::IVAppAccount *account = hostAccount();
    if (account && !account->isLogin())
        account->login(QVariantMap());
}

QString userId()
{
    AppFrameWork::IVAppAccount *account = hostAccount();
    if (!account)
        return QString();
    AppFrameWork::VAppUserInfo info;
    account->userInfo(info);
    return info.userId;
}

QString startSource()
{
    IAppController *controller = appController();
    AppFrameWork::IVAppContainer *container = controller ? controller->container() : nullptr;
    if (!container)
        return QString();
    const AppFrameWork::VAppStartInfo *info = container->startInfo();
    return info ? info->source : QString();
}
