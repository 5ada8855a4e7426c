#include <liolite/vlitethemenotifier.h>

VLiteThemeNotifier::VLiteThemeNotifier(QObject* parent)
    : QObject(parent)
{
}
