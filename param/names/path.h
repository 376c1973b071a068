// The paths in names: levels divided by "\", by whole characters of the runtime's code page.
#ifndef QXCORE_PARAM_NAMES_PATH_H
#define QXCORE_PARAM_NAMES_PATH_H

#include "strings/characters.h"

#include <qxcore/string.h>

#include <optional>

namespace qx {

// The levels of a path from the front, so that a path of any depth is walked.
class PathLevels {
public:
    // The path stays the caller's. REQUIRES: path is not null.
    explicit PathLevels(const char* path);

    // Whether a delimiter is left, so that more than the last level is.
    bool MoreThanOne() const { return m_delimiter != nullptr; }
    // Takes the level in front of the next delimiter away. REQUIRES: MoreThanOne().
    CXString TakeFirst();
    const char* Rest() const { return m_rest; }

private:
    const Characters m_characters;
    const char* m_rest;
    const char* m_delimiter;
};

// A name cut in two at a delimiter.
struct SplitName {
    CXString head;
    CXString tail;
};

// "a\b\c" is "a\b" and "c". Nothing where there is no delimiter; a null name has none.
std::optional<SplitName> SplitAtLast(const char* name);

// A null or empty name of a value stands for "@".
const char* ValueName(const char* name);

}  // namespace qx

#endif
