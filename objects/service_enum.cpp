#include "objects/service_enum.h"

#include <cassert>

namespace qx {

int CServiceNameEnum::Next(unsigned count, const char** out, unsigned* fetched) {
    assert(out || count == 0);
    unsigned delivered = 0;
    while (delivered < count) {
        const char** name = m_services->GetNextKey(m_at);
        if (!name) break;
        out[delivered++] = *name;
    }
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

int CServiceNameEnum::Skip(unsigned count) {
    unsigned skipped = 0;
    while (skipped < count && m_services->GetNextKey(m_at)) ++skipped;
    return skipped > 0;
}

int CServiceEnum::Next(unsigned count, IQXUnknown** out, unsigned* fetched) {
    assert(out || count == 0);
    unsigned delivered = 0;
    while (delivered < count) {
        IQXUnknown** object = m_services->GetNext(m_at);
        if (!object) break;
        if (*object && (*object)->QueryInterface(m_id, &out[delivered])) ++delivered;
    }
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

int CServiceEnum::Skip(unsigned count) {
    unsigned skipped = 0;
    while (skipped < count) {
        IQXUnknown** object = m_services->GetNext(m_at);
        IQXUnknown* answer = nullptr;
        if (!object || !*object || !(*object)->QueryInterface(m_id, &answer)) break;
        answer->Release();
        ++skipped;
    }
    return skipped > 0;
}

}  // namespace qx
