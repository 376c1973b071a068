// The platform's calls for profile files.
#ifndef QXCORE_PARAM_INI_FILE_PROFILE_H
#define QXCORE_PARAM_INI_FILE_PROFILE_H

#include <qxcore/platform.h>

#include <cstddef>

namespace qx {

// The limit of every answer, a value or a listing; what is longer is cut.
inline constexpr size_t kProfileBlockSize = 64000;

// Writes the value of a key; a null text deletes the key, and a null key the section. What the
// platform answers; 0 for a name that it cannot take. REQUIRES: the text fits the platform, which
// would delete the key for another one.
int WriteProfile(const char* section, const char* key, const char* text, const char* file);

// A buffer for one answer: a text, or names each with a terminator.
class ProfileBlock {
public:
    // The value of a key; for a null key the names of a section's keys, and for a null section
    // those of all sections. 0 where there is nothing, or a name that the platform cannot take. A
    // cut text or name ends at a whole character.
    unsigned Read(const char* section, const char* key, const char* file);

    char* Text() { return m_bytes; }

private:
    // Names end with an empty one, also where they fill the block.
    char m_bytes[kProfileBlockSize + 1] = {};

    void EndAtWholeCharacter();
};

}  // namespace qx

#endif
