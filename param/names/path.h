// The paths in names: levels divided by "\", by whole characters of the code page.
#ifndef QXCORE_PARAM_NAMES_PATH_H
#define QXCORE_PARAM_NAMES_PATH_H

#include <qxcore/string.h>

#include <optional>

// A name cut in two at a delimiter.
struct SplitName {
    CXString head;
    CXString tail;
};

// Nothing where there is no delimiter. A null name has none.
std::optional<SplitName> SplitAtFirst(const char* name);  // "a\b\c" is "a" and "b\c"
std::optional<SplitName> SplitAtLast(const char* name);   // "a\b\c" is "a\b" and "c"

// A null or empty name of a value stands for "@".
const char* ValueName(const char* name);

#endif
