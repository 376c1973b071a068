#include "param/registry/name_snapshot.h"

#include <algorithm>

namespace qx {

void _CTValEnum::Append(const char* name) {
    if (m_count == m_capacity) Grow();
    m_names[m_count] = name;
    ++m_count;
}

void _CTValEnum::Grow() {
    constexpr unsigned kPart = 8, kMinStep = 4, kMaxStep = 1024;
    unsigned capacity = m_capacity + std::clamp(m_count / kPart, kMinStep, kMaxStep);
    std::unique_ptr<CXString[]> grown(new CXString[capacity]);
    std::copy_n(m_names.get(), m_count, grown.get());  // the texts are shared
    m_names = std::move(grown);
    m_capacity = capacity;
}

int _CTValEnum::Next(unsigned count, const char** out, unsigned* fetched) {
    unsigned delivered = 0;
    while (out && delivered < count && m_position < m_count)
        out[delivered++] = m_names[m_position++];
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

int _CTValEnum::Skip(unsigned count) {
    m_position += count;
    return 1;
}

}  // namespace qx
