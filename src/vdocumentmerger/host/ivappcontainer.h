#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class QObject;

namespace AppFrameWork {

class IVAppAccount;

// How the host was started: the files to import and where the start came from.
struct VAppStartInfo {
    QString source;
    // As the host received them: "|nbsp|" may stand for a space and a "?" part may follow.
    QStringList files;
};

// The host's application container, as the add-on sees it.
class IVAppContainer {
public:
    virtual ~IVAppContainer() = default;

    // The account object, or null. The host owns it.
    virtual IVAppAccount *account() = 0;
    // Never null. The host owns it.
    virtual const VAppStartInfo *startInfo() = 0;
    // Records one usage event.
    virtual void postEvent(const QString &name, const QHash<QString, QString> &params) = 0;
    // The host later calls receiver's slot by name, on the GUI thread, with one QVariantMap.
    virtual void subscribe(const QString &notification, QObject *receiver, const char *slot) = 0;
    // The host's main window, seen as a container; cast it to VAppMainWindow to use it as one.
    virtual IVAppContainer *mainWindow() = 0;
};

} // namespace AppFrameWork
