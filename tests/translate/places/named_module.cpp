// A module of no content, copied by tests to the names they need.
#include <qxcore/platform.h>

extern "C" __declspec(dllexport) int NamedModule() {
    return 1;
}
