#include "vappcontainer.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "host/vappmainwindow.h"
#include "vapplogging.h"

VAppContainer::VAppContainer(QObject *parent)
    : QObject(parent)
{
}

AppFrameWork::IVAppAccount *VAppContainer::account()
{
    return &m_account;
}

const AppFrameWork::VAppStartInfo *VAppContainer::startInfo()
{
    return &m_startInfo;
}

void VAppContainer::postEvent(const QString &name, const QHash<QString, QString> &params)
{
    qCDebug(lcVAppHost) << "usage event" << name << params;
    m_usageLog.append(name, params);
}

void VAppContainer::subscribe(const QString &notification, QObject *receiver, const char *slot)
{
    m_notifier.subscribe(notification, receiver, slot);
}

AppFrameWork::IVAppContainer *VAppContainer::mainWindow()
{
    return m_window ? m_mainWindow : nullptr;
}

void VAppContainer::setStartInfo(const QString &source, const QStringList &files)
{
    m_startInfo.source = source;
    m_startInfo.files = files;
}

void VAppContainer::setUsageLogPath(const QString &filePath)
{
    m_usageLog = VAppUsageLog(filePath);
}

void VAppContainer::setMainWindow(VAppMainWindow *window)
{
    m_window = window;
    m_mainWindow = window;
    m_account.setDialogParent(window);
}

int VAppContainer::notify(const QString &notification, const QVariantMap &params)
{
    return m_notifier.notify(notification, params);
}

int VAppContainer::deliverSecondInstance(const QStringList &files)
{
    QVariantMap params;
    params.insert(QStringLiteral("args"), secondInstanceArgs(files));
    return notify(QStringLiteral("SecondInstance"), params);
}

QString VAppContainer::secondInstanceArgs(const QStringList &files)
{
    QJsonObject args;
    args.insert(QStringLiteral("file"), files.join(QLatin1Char('|')));
    return QString::fromUtf8(QJsonDocument(args).toJson(QJsonDocument::Compact));
}
