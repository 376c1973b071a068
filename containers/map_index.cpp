#include <qxcore/map_index.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <new>

namespace {

constexpr unsigned kMinimumBits = 8;
constexpr unsigned kHashBits = 32;

}  // namespace

bool QXMapIndex::Allocate(unsigned bits) noexcept {
    if (bits >= kHashBits) return false;
    size_t size = size_t(1) << bits;
    auto fresh = new (std::nothrow) Slot[size]();
    if (!fresh) return false;
    m_slots = fresh;
    m_mask = static_cast<unsigned>(size - 1);
    m_shift = kHashBits - bits;
    return true;
}

void QXMapIndex::Start(unsigned nodes) noexcept {
    Drop();
    unsigned bits = static_cast<unsigned>(std::bit_width(nodes)) + 1;  // at most half full
    Allocate(bits < kMinimumBits ? kMinimumBits : bits);
}

void QXMapIndex::Put(const Slot& slot) {
    unsigned at = Home(slot.hash);
    while (m_slots[at].nodeAndBehind) at = (at + 1) & m_mask;
    m_slots[at] = slot;
}

void QXMapIndex::Grow() noexcept {
    Slot* old = m_slots;
    unsigned oldMask = m_mask;
    if (!Allocate(kHashBits - m_shift + 1)) {
        Drop();
        return;
    }
    for (unsigned at = 0;; ++at) {
        if (old[at].nodeAndBehind) Put(old[at]);
        if (at == oldMask) break;
    }
    delete[] old;
}

void QXMapIndex::Add(unsigned hash, void* node, const void* target, const void* behind) noexcept {
    assert(InUse() && !Find(hash));
    if (m_used > m_mask / 2) Grow();
    if (!m_slots) return;
    auto line = [](const void* at) { return reinterpret_cast<uintptr_t>(at) >> kLineBits; };
    auto toTarget = static_cast<unsigned>(line(target) - line(node));
    auto toBehind = static_cast<unsigned>(behind ? line(behind) - line(node) : 0);
    auto address = reinterpret_cast<uintptr_t>(node);
    assert(address >> 48 == 0);
    Put({uint64_t{address} << 16 | (toBehind & 0xFFFF), hash,
         (toTarget & 0xFFFFFF) | (toBehind >> 16) << 24});
    ++m_used;
}

// Closes the gap, so that no search ends early: a later slot of the run moves up when its home does
// not lie behind the gap.
void QXMapIndex::Remove(unsigned hash) noexcept {
    assert(InUse());
    unsigned gap = Home(hash);
    while (m_slots[gap].hash != hash || !m_slots[gap].nodeAndBehind) {
        if (!m_slots[gap].nodeAndBehind) return;
        gap = (gap + 1) & m_mask;
    }
    for (unsigned at = (gap + 1) & m_mask; m_slots[at].nodeAndBehind; at = (at + 1) & m_mask) {
        unsigned fromHome = (at - Home(m_slots[at].hash)) & m_mask;
        unsigned fromGap = (at - gap) & m_mask;
        if (fromHome < fromGap) continue;
        m_slots[gap] = m_slots[at];
        gap = at;
    }
    m_slots[gap] = {};
    --m_used;
}

void QXMapIndex::Drop() noexcept {
    delete[] m_slots;
    m_slots = nullptr;
    m_mask = 0;
    m_used = 0;
}
