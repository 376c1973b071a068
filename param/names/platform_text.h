// How much text the platform's narrow calls take.
#ifndef QXCORE_PARAM_NAMES_PLATFORM_TEXT_H
#define QXCORE_PARAM_NAMES_PLATFORM_TEXT_H

#include "strings/unit_scan.h"

#include <cstddef>

namespace qx {

// The platform counts the bytes of a text in 16 bits, in UTF-16 and with the terminator. A longer
// one is none to some of its calls, which may mean everything, and to others a shorter one.
inline constexpr size_t kPlatformTextSize = 32766;

// Whether a text, which may be null, is taken as it is.
inline bool FitsPlatform(const char* text) {
    return !text || ScanLength(text) <= kPlatformTextSize;
}

}  // namespace qx

#endif
