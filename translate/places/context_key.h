// Context keys: where in a module a text stands, and the lookups for such a place.
#ifndef QXCORE_TRANSLATE_PLACES_CONTEXT_KEY_H
#define QXCORE_TRANSLATE_PLACES_CONTEXT_KEY_H

#include "translate/places/lookup.h"
#include "translate/places/module_name.h"

#include <qxcore/dictionary.h>

#include <optional>

namespace qx {

// What a place adds to the hash of a text there: the text hash of its context key. Entries are
// found by their hash alone, so key and text need never be put together. Nothing: no place.
using PlaceHash = std::optional<unsigned>;

// Of a key that is written out; null and empty are no place.
PlaceHash PlaceOfKey(const char* key);
// Of a string table block, without writing its key.
PlaceHash PlaceOfStrings(ModuleName& module, unsigned block);

// MakeResourceKey into a buffer of `size` bytes; a key that does not fit is cut. Answers the bytes
// of the whole key; 0 when nothing was written.
size_t WriteResourceKey(ModuleName& module, const void* id, char* buffer, size_t size, int kind);

// The context key of a resource, for as long as one call needs it.
class ResourceKey {
public:
    // Empty when the module has no path.
    ResourceKey(ModuleName& module, const void* name, int kind) {
        m_text[0] = 0;
        WriteResourceKey(module, name, m_text, sizeof m_text, kind);
    }
    operator const char*() const { return m_text; }

private:
    char m_text[1024];  // the name of a module and a resource name; a longer one is cut
};

// A place that texts are looked up for, and the intercepted call that is told to the observer, if
// there are one.
struct Place {
    PlaceHash hash;
    const LookupCall* call = nullptr;
};

// TranslateInContext and TranslateBufferInContext.
const char* TranslateAt(const char* text, const Place& place);
unsigned int TranslateBufferAt(char* buffer, unsigned int size, const Place& place,
                               int measureOnly);

}  // namespace qx

#endif
