// The context key of a resource, for as long as one call needs it.
#ifndef QXCORE_TRANSLATE_RESOURCE_KEY_H
#define QXCORE_TRANSLATE_RESOURCE_KEY_H

#include "translate/places/context_key.h"

class ResourceKey {
public:
    // Empty when the module has no path.
    ResourceKey(HMODULE module, const void* name, int kind) {
        WriteResourceKey(module, name, text, sizeof text, kind);
    }
    operator const char*() const { return text; }

private:
    char text[1024] = "";  // the name of a module and a resource name; a longer one is cut
};

#endif
