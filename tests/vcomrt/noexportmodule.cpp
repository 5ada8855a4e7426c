// A loadable library that is not an automation server: it lacks DllGetClassObject.
extern "C" __attribute__((visibility("default"))) int vcomrtNotAServer()
{
    return 1;
}
