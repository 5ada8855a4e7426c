#include <liolite/yrtproduct.h>

#include <QCoreApplication>

namespace yrt {
namespace product {

QString getZYLDriveDisplayName()
{
    return QCoreApplication::translate("yrt::product", "VDrive");
}

} // namespace product
} // namespace yrt
