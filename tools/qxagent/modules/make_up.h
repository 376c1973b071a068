// Makes up for the rules of the layer that hurt programs which were not written for it. The agent
// stands before the library in the imports of the program's modules and calls on to it.
#ifndef QXAGENT_MODULES_MAKE_UP_H
#define QXAGENT_MODULES_MAKE_UP_H

#include <windows.h>

namespace qx {

// `wideBoxes`: message boxes of the wide functions are translated too.
void PrepareMakeUp(bool wideBoxes);

// REQUIRES: the library has not patched the module yet.
void MakeUpFor(HMODULE module);

}  // namespace qx

#endif
