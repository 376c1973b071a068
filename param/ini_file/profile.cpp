#include "param/ini_file/profile.h"

#include "param/names/platform_text.h"
#include "strings/characters.h"

#include <cassert>
#include <cstring>

namespace qx {

int WriteProfile(const char* section, const char* key, const char* text, const char* file) {
    assert(FitsPlatform(text));
    if (!FitsPlatform(section) || !FitsPlatform(key) || !FitsPlatform(file)) return 0;
    return WritePrivateProfileStringA(section, key, text, file);
}

unsigned ProfileBlock::Read(const char* section, const char* key, const char* file) {
    // What the platform writes of an answer that does not fit is its own affair.
    const size_t kFull = kProfileBlockSize - 2;
    m_bytes[0] = m_bytes[1] = 0;
    if (!FitsPlatform(section) || !FitsPlatform(key) || !FitsPlatform(file)) return 0;
    unsigned size = GetPrivateProfileStringA(section, key, "", m_bytes, kProfileBlockSize, file);
    if (size < kFull) {
        m_bytes[size + 1] = 0;
    } else {
        EndAtWholeCharacter();
    }
    return size;
}

void ProfileBlock::EndAtWholeCharacter() {
    m_bytes[kProfileBlockSize - 1] = m_bytes[kProfileBlockSize] = 0;
    size_t last = kProfileBlockSize - 1;  // where the last text begins
    while (last > 0 && m_bytes[last] == 0) --last;
    while (last > 0 && m_bytes[last - 1] != 0) --last;
    char* text = m_bytes + last;
    Characters::OfProcess().EndAtWholeCharacter(text, strlen(text) + 1);
    text[strlen(text) + 1] = 0;
}

}  // namespace qx
