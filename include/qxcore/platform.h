// <windows.h> without the macros that collide with names of this library.
//
// Such a macro would rename a member here and not there: GetClassName of a persistent object would
// be GetClassNameA in one file and GetClassName in another.
//
// The header includes <windows.h> itself, so a host may include that before or after ours: either
// way the macros below are gone, and GetClassNameA or GetClassNameW is written out where the
// platform's function is meant.
#ifndef QXCORE_PLATFORM_H
#define QXCORE_PLATFORM_H

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#undef GetClassName
#undef CreateEvent
#undef GetMessage
#undef LoadString
#undef DeleteFile
#undef GetObject

#endif
