#include "vapphostapplication.h"

int main(int argc, char *argv[])
{
    return VAppHostApplication::run(argc, argv);
}
