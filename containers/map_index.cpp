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
    slots = fresh;
    mask = static_cast<unsigned>(size - 1);
    shift = kHashBits - bits;
    return true;
}

void QXMapIndex::Start(unsigned nodes) noexcept {
    Drop();
    unsigned bits = static_cast<unsigned>(std::bit_width(nodes)) + 1;  // at most half full
    Allocate(bits < kMinimumBits ? kMinimumBits : bits);
}

void QXMapIndex::Put(const Slot& slot) {
    unsigned at = Home(slot.hash);
    while (slots[at].node) at = (at + 1) & mask;
    slots[at] = slot;
}

void QXMapIndex::Grow() noexcept {
    Slot* old = slots;
    unsigned oldMask = mask;
    if (!Allocate(kHashBits - shift + 1)) {
        Drop();
        return;
    }
    for (unsigned at = 0;; ++at) {
        if (old[at].node) Put(old[at]);
        if (at == oldMask) break;
    }
    delete[] old;
}

void QXMapIndex::Add(unsigned hash, void* node, const void* target) noexcept {
    if (used > mask / 2) Grow();
    if (!slots) return;
    auto distance = reinterpret_cast<intptr_t>(target) - reinterpret_cast<intptr_t>(node);
    Put({node, hash, static_cast<int>(distance / kGrain)});
    ++used;
}

// Closes the gap, so that no search ends early: a later slot of the run moves up when its home does
// not lie behind the gap.
void QXMapIndex::Remove(unsigned hash) noexcept {
    unsigned gap = Home(hash);
    while (slots[gap].hash != hash || !slots[gap].node) {
        if (!slots[gap].node) return;
        gap = (gap + 1) & mask;
    }
    for (unsigned at = (gap + 1) & mask; slots[at].node; at = (at + 1) & mask) {
        unsigned fromHome = (at - Home(slots[at].hash)) & mask;
        unsigned fromGap = (at - gap) & mask;
        if (fromHome < fromGap) continue;
        slots[gap] = slots[at];
        gap = at;
    }
    slots[gap] = {};
    --used;
}

void QXMapIndex::Drop() noexcept {
    delete[] slots;
    slots = nullptr;
    mask = 0;
    used = 0;
}
