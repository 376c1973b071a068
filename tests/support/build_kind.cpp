#include "support/build_kind.h"

#if defined(QXCORE_GUARD_HEAP)
const bool kHasGuardPages = true;
#else
const bool kHasGuardPages = false;
#endif

#if defined(QXCORE_GUARD_HEAP) || defined(QXCORE_TRAPS)
const bool kIsSlowBuild = true;
#else
const bool kIsSlowBuild = false;
#endif
