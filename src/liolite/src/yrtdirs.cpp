#include <liolite/yrtdirs.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <dlfcn.h>

namespace yrt {
namespace dirs {

QString resources()
{
    Dl_info info{};
    QString libraryFolder;
    // The folder of the shared object that holds this very function.
    if (dladdr(reinterpret_cast<void*>(&resources), &info) && info.dli_fname)
        libraryFolder = QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath();
    if (libraryFolder.isEmpty())
        libraryFolder = QCoreApplication::applicationDirPath();
    return QDir::cleanPath(libraryFolder + QStringLiteral("/../resources"));
}

} // namespace dirs
} // namespace yrt
