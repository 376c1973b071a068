// Look-ups of intercepted calls, told to the observer while there is one.
#ifndef QXCORE_TRANSLATE_PLACES_LOOKUP_H
#define QXCORE_TRANSLATE_PLACES_LOOKUP_H

#include <qxcore/dictionary.h>
#include <qxcore/observer.h>

#include <atomic>
#include <optional>

namespace qx {

// What the observer is to know of an intercepted call: see QXLookup.
struct LookupCall {
    const char* function;
    HMODULE module;
    const char* place;
};

extern std::atomic<QXLookupObserver> g_observer;
void SetObserver(QXLookupObserver observer, void* context);

inline bool IsObserved() {
    return g_observer.load(std::memory_order_relaxed) != nullptr;
}
// The call if somebody wants to be told of it, else null.
inline const LookupCall* IfObserved(const LookupCall& call) {
    return IsObserved() ? &call : nullptr;
}

void Tell(const LookupCall& call, const char* source, const char* target, QXLookupEnd end);
// Of a text that was not looked up.
inline void TellOf(const LookupCall* call, const char* source, QXLookupEnd end) {
    if (call) Tell(*call, source, nullptr, end);
}

// Tells how the look-up of a text ends, in the place of this hash and then for any place. The
// look-up itself comes after it, since the observer may change the dictionary. REQUIRES: the text
// is not empty.
void TellLookup(const LookupCall& call, CWld& dictionary, const char* text,
                std::optional<unsigned> place);

// CWld::Translate of a text, null without a translation, and of a buffer; told unless the call is
// null.
inline const char* TranslateText(CWld& dictionary, const char* text, const LookupCall* call) {
    if (call && text && *text) TellLookup(*call, dictionary, text, std::nullopt);
    return dictionary.Translate(text, 1);
}
inline unsigned int TranslateBuffer(CWld& dictionary, char* buffer, unsigned int size,
                                    const LookupCall* call) {
    if (call && *buffer) TellLookup(*call, dictionary, buffer, std::nullopt);
    return dictionary.Translate(buffer, size);
}

}  // namespace qx

#endif
