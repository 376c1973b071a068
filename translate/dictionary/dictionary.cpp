#include "translate/dictionary/dictionary.h"

#include "translate/dictionary/default_font.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace {

alignas(CWld) constinit unsigned char g_storage[sizeof(CWld)] = {};

}  // namespace

CWld& g_Wld = reinterpret_cast<CWld&>(g_storage);

void StartDictionary() {
    new (g_storage) CWld;
}

void StopDictionary() {
    g_Wld.~CWld();
}

CContext::CContext(const char* source, const char* target)
    : source(source), target(target ? target : source), count(1) {
    UnescapeText(this->source);
    UnescapeText(this->target);
}

CWld::CWld()
    : m_bDialogFont(1),
      m_szFontName(),
      m_nFontScript(0),
      m_nFontSize(0),
      m_nContexts(0),
      m_hFont(nullptr),
      m_bInit(0) {
    TakeDefaultFont(*this);
}

CWld::~CWld() = default;

// The entry of the texts with this hash, if it holds a translation.
static CContext* FindTranslation(CWld& dictionary, unsigned hash) {
    CContext** entry = dictionary.m_Contexts.count ? dictionary.m_Contexts.FindHash(hash) : nullptr;
    return entry && *(*entry)->target ? *entry : nullptr;
}

const char* TargetOf(CWld& dictionary, unsigned hash) {
    CContext* found = FindTranslation(dictionary, hash);
    return found ? static_cast<const char*>(found->target) : nullptr;
}

const char* CWld::Translate(const char* text, int bNullIfMissing) {
    if (!text || !*text) return nullptr;
    if (const char* target = TargetOf(*this, QXHashText(text).hash)) return target;
    return bNullIfMissing ? nullptr : text;
}

unsigned int CWld::Translate(char* buffer, unsigned int size) {
    if (!buffer || !*buffer) return 0;
    CContext* found = FindTranslation(*this, QXHashText(buffer).hash);
    if (!found) return static_cast<unsigned>(strlen(buffer));
    // The buffer holds a text, so it has room for a terminator whatever the size says.
    return static_cast<unsigned>(found->target.CopyFit(
        buffer, size ? static_cast<int>(std::min<unsigned>(size, INT_MAX)) : 1));
}
