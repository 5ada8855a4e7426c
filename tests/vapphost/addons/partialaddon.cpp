// A library with two of the three add-on entry points: Destroy is missing.
#include <QWidget>

namespace AppFrameWork {
class IVAppContainer;
}

extern "C" Q_DECL_EXPORT bool Initialize(AppFrameWork::IVAppContainer *container)
{
    return container != nullptr;
}

extern "C" Q_DECL_EXPORT QWidget *CreateClientWidget(QWidget *parent)
{
    return new QWidget(parent);
}
