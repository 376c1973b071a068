// The paths in names: levels divided by "\", by whole characters of the code page.
#ifndef QXCORE_PARAM_PATH_H
#define QXCORE_PARAM_PATH_H

#include <qxcore/string.h>

// A name cut in two at a delimiter; `found` tells whether there was one.
struct SplitName {
    bool found;
    CXString head;
    CXString tail;
};

SplitName SplitAtFirst(const char* name);  // "a\b\c" is "a" and "b\c"
SplitName SplitAtLast(const char* name);   // "a\b\c" is "a\b" and "c"

// A null or empty name of a value stands for "@".
const char* ValueName(const char* name);

#endif
