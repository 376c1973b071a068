#include "translate/dictionary/code_page.h"
#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/places/context_key.h"

#include <qxcore/dictionary.h>
#include <qxcore/export.h>

#include <cassert>
#include <cstring>

namespace qx {

namespace {

constexpr UINT kFirstIdWithoutKey = 0x10000;
constexpr unsigned kTextSize = 1024;

// Puts a text of fewer than kTextSize bytes in place of a wide one. Answers the characters with the
// terminator, or 0 when they do not fit: the buffer holds as many as there is room for. REQUIRES:
// size > 0.
int WidenInto(const char* text, int length, wchar_t* buffer, int size) {
    assert(size > 0);
    wchar_t wide[kTextSize];
    int characters = Widen(text, length, wide, kTextSize, MB_PRECOMPOSED);
    bool fits = characters < size;
    if (!fits) {
        characters = size - 1;
        if (characters > 0 && IS_SURROGATE_PAIR(wide[characters - 1], wide[characters]))
            --characters;
    }
    memcpy(buffer, wide, static_cast<size_t>(characters) * sizeof *wide);
    buffer[characters] = 0;
    return fits ? characters + 1 : 0;
}

// Tells why a wide string was not looked up. Without room the buffer takes the string's address.
QXCORE_NOINLINE void TellWide(const LookupCall& call, const wchar_t* buffer, int size, int length,
                              QXLookupEnd end) {
    if (!size && !buffer) return;
    const wchar_t* text = size ? buffer : *reinterpret_cast<wchar_t* const*>(buffer);
    Tell(call, InCodePage(text, static_cast<size_t>(length)).text, nullptr, end);
}

// The place of a string with its key written out, for the observer.
class ToldPlace {
public:
    ToldPlace(ModuleName& module, UINT id, const PlaceHash& hash) : m_place{hash, &m_call} {
        m_call = QX_CALL(LoadStringA, module.Module());
        if (!hash) return;
        WriteResourceKey(module, BlockId(id), m_key, sizeof m_key, QXKEY_STRINGS);
        m_call.place = m_key;
    }
    operator const Place&() const { return m_place; }

    // The sixteen strings of a block share its key.
    static const void* BlockId(UINT id) {
        return reinterpret_cast<const void*>(static_cast<uintptr_t>(BlockOf(id)));
    }
    static UINT BlockOf(UINT id) { return (id >> 4) + 1; }

private:
    char m_key[300];
    LookupCall m_call;
    Place m_place;
};

}  // namespace

int WINAPI NewLoadStringA(HINSTANCE module, UINT id, char* buffer, int size) {
    auto real = QX_REAL(LoadStringA);
    ModuleName name(module);
    bool isActive = IsTranslationActive(name);
    int length = real(module, id, buffer, size);
    if (length < 0 || size <= 0 || !buffer) return length;
    if (!isActive) {
        if (IsObserved() && length)
            Tell(QX_CALL(LoadStringA, module), buffer, nullptr, WhyNotActive());
        return length;
    }
    // A missing string counts as an empty one, for which a place alone may have a translation.
    if (!length) *buffer = 0;
    PlaceHash place;
    if (id < kFirstIdWithoutKey) place = PlaceOfStrings(name, ToldPlace::BlockOf(id));
    auto room = static_cast<unsigned>(size);
    if (IsObserved())
        return static_cast<int>(TranslateBufferAt(buffer, room, ToldPlace(name, id, place), 0));
    return static_cast<int>(TranslateBufferAt(buffer, room, {place}, 0));
}

// The text crosses the code page both ways, so characters that it lacks are lost even where nothing
// is translated. The answer counts the terminator, other than the real function's, and is 0 for a
// translation that is cut.
int WINAPI NewLoadStringW(HINSTANCE module, UINT id, wchar_t* buffer, int size) {
    auto real = QX_REAL(LoadStringW);
    LookupCall call = QX_CALL(LoadStringW, module);
    bool isActive = IsTranslationActive(module);
    int characters = real(module, id, buffer, size);
    if (characters <= 0 || size < 0) return characters;
    KeptLastError kept;
    if (!isActive || !size) {
        QXLookupEnd end = isActive ? QXLOOKUP_POINTER : WhyNotActive();
        if (IsObserved()) TellWide(call, buffer, size, characters, end);
        return characters;
    }
    char text[kTextSize];
    int length = Narrow(buffer, characters, text, kTextSize - 1, WC_COMPOSITECHECK);
    text[length] = 0;
    length = static_cast<int>(TranslateBuffer(g_Wld, text, kTextSize, IfObserved(call)));
    return WidenInto(text, length, buffer, size);
}

}  // namespace qx
