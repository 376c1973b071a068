#include "translate/dictionary/dictionary.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace qx {

namespace {

alignas(CWld) constinit unsigned char g_storage[sizeof(CWld)] = {};

}  // namespace

void StartDictionary() {
    new (g_storage) CWld;
}

void StopDictionary() {
    g_Wld.~CWld();
}

}  // namespace qx

CWld& g_Wld = reinterpret_cast<CWld&>(qx::g_storage);

CContext::CContext(const char* source, const char* target)
    : source(source), target(target ? target : source), count(1) {
    qx::UnescapeText(this->source);
    qx::UnescapeText(this->target);
}

CWld::CWld()
    : m_bDialogFont(1),
      m_szFontName(),
      m_nFontScript(0),
      m_nFontSize(0),
      m_nContexts(0),
      m_hFont(nullptr),
      m_bInit(0) {
    qx::TakeDefaultFont(*this);
}

CWld::~CWld() = default;

const char* CWld::Translate(const char* text, int bNullIfMissing) {
    if (!text || !*text) return nullptr;
    if (const char* target = qx::TargetOf(*this, QXHashText(text).hash)) return target;
    return bNullIfMissing ? nullptr : text;
}

unsigned int CWld::Translate(char* buffer, unsigned int size) {
    if (!buffer || !*buffer) return 0;
    CContext* found = qx::FindTranslation(*this, QXHashText(buffer).hash);
    if (!found) return static_cast<unsigned>(strlen(buffer));
    // The buffer holds a text, so it has room for a terminator whatever the size says.
    return static_cast<unsigned>(found->target.CopyFit(
        buffer, size ? static_cast<int>(std::min<unsigned>(size, INT_MAX)) : 1));
}
