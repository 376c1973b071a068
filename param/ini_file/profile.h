// What the platform tells of a profile file.
#ifndef QXCORE_PARAM_INI_FILE_PROFILE_H
#define QXCORE_PARAM_INI_FILE_PROFILE_H

#include <qxcore/platform.h>

#include <cstddef>

namespace qx {

// The limit of every value and every listing; what is longer is cut.
inline constexpr size_t kProfileBlockSize = 64000;

// A buffer for one answer: a text, or names each with a terminator.
class ProfileBlock {
public:
    // The value of a key; for a null key the names of a section's keys, and for a null section
    // those of all sections. 0 where there is nothing. A cut text or name ends at a whole
    // character.
    unsigned Read(const char* section, const char* key, const char* file);

    char* Text() { return m_bytes; }

private:
    // Names end with an empty one, also where they fill the block.
    char m_bytes[kProfileBlockSize + 1] = {};

    void EndAtWholeCharacter();
};

}  // namespace qx

#endif
