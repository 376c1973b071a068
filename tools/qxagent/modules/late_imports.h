// Functions that a program gets at while it runs, by their names or delay-loaded: no slot of its
// imports holds their addresses when it starts.
#ifndef QXAGENT_MODULES_LATE_IMPORTS_H
#define QXAGENT_MODULES_LATE_IMPORTS_H

#include <windows.h>

namespace qx {

// Whoever looks the function up gets the replacement. REQUIRES: no module is watched yet.
void ReplaceLate(const char* dll, const char* function, void* replacement);

// Watches the look-ups of a module.
void WatchLateImports(HMODULE module);

}  // namespace qx

#endif
