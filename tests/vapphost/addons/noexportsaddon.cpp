// A library that loads fine but offers none of the add-on entry points.
#include <QtGlobal>

extern "C" Q_DECL_EXPORT int vapphostTestNotAnAddon()
{
    return 42;
}
