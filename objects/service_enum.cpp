#include "objects/service_enum.h"

int CServiceNameEnum::Next(unsigned count, const char** out, unsigned* fetched) {
    unsigned delivered = 0;
    while (delivered < count) {
        const char** name = services->GetNextKey(at);
        if (!name) break;
        out[delivered++] = *name;
    }
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

int CServiceNameEnum::Skip(unsigned count) {
    unsigned skipped = 0;
    while (skipped < count && services->GetNextKey(at)) ++skipped;
    return skipped > 0;
}

int CServiceEnum::Next(unsigned count, IQXUnknown** out, unsigned* fetched) {
    unsigned delivered = 0;
    while (delivered < count) {
        IQXUnknown** object = services->GetNext(at);
        if (!object) break;
        if (*object && (*object)->QueryInterface(id, &out[delivered])) ++delivered;
    }
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

int CServiceEnum::Skip(unsigned count) {
    unsigned skipped = 0;
    while (skipped < count) {
        IQXUnknown** object = services->GetNext(at);
        IQXUnknown* answer = nullptr;
        if (!object || !*object || !(*object)->QueryInterface(id, &answer)) break;
        answer->Release();
        ++skipped;
    }
    return skipped > 0;
}
