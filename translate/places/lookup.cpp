#include "translate/places/lookup.h"

#include <qxcore/hash.h>

#include <cassert>

namespace qx {

constinit std::atomic<QXLookupObserver> g_observer = nullptr;

namespace {

constinit std::atomic<void*> g_observerContext = nullptr;

CContext* EntryOf(CWld& dictionary, unsigned hash) {
    CContext** entry = dictionary.m_Contexts.count ? dictionary.m_Contexts.FindHash(hash) : nullptr;
    return entry ? *entry : nullptr;
}

}  // namespace

void SetObserver(QXLookupObserver observer, void* context) {
    g_observerContext = context;
    g_observer = observer;
}

void Tell(const LookupCall& call, const char* source, const char* target, QXLookupEnd end) {
    QXLookupObserver observer = g_observer;
    if (!observer) return;  // the observer took itself back in the midst of a call
    QXLookup lookup = {call.function, call.module, call.place, source, target, end};
    DWORD lastError = GetLastError();
    observer(&lookup, g_observerContext);
    SetLastError(lastError);
}

void TellLookup(const LookupCall& call, CWld& dictionary, const char* text,
                std::optional<unsigned> place) {
    assert(*text);
    QXTextHash hash = QXHashText(text);
    CContext* inPlace = place ? EntryOf(dictionary, hash.Behind(*place)) : nullptr;
    CContext* plain = EntryOf(dictionary, hash.hash);
    if (inPlace && *inPlace->target) return Tell(call, text, inPlace->target, QXLOOKUP_BY_PLACE);
    if (plain && *plain->target) return Tell(call, text, plain->target, QXLOOKUP_PLAIN);
    Tell(call, text, nullptr, inPlace || plain ? QXLOOKUP_EMPTY : QXLOOKUP_MISS);
}

}  // namespace qx
