// The growing output of a pass over a dialog template.
#ifndef QXCORE_TRANSLATE_DIALOG_BUFFER_H
#define QXCORE_TRANSLATE_DIALOG_BUFFER_H

#include <qxcore/heap.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

class CDlgBuffer {
public:
    // Throws CXMemException, here and wherever the buffer grows.
    explicit CDlgBuffer(size_t capacity) : capacity(capacity) {
        data = static_cast<uint8_t*>(heap->Alloc(capacity + 1));
    }
    ~CDlgBuffer() { heap->Free(data); }
    CDlgBuffer(const CDlgBuffer&) = delete;
    CDlgBuffer& operator=(const CDlgBuffer&) = delete;

    // Room for `size` bytes at the end, of which the caller fills what he commits.
    uint8_t* Reserve(size_t size) {
        if (used + size > capacity) Grow(used + size);
        return data + used;
    }
    void Commit(size_t size) { used += size; }

    void Append(const void* bytes, size_t size) {
        memcpy(Reserve(size), bytes, size);
        used += size;
    }
    void AppendWord(uint16_t word) { Append(&word, sizeof word); }
    // Zero bytes up to a multiple of 4.
    void Align() {
        while (used % 4) {
            *Reserve(1) = 0;
            ++used;
        }
    }

    uint8_t* Data() const { return data; }
    size_t Used() const { return used; }

private:
    // At least half as much again, so that a long template does not move with every part of it.
    void Grow(size_t needed) {
        size_t newCapacity = std::max(needed, capacity + capacity / 2);
        auto moved = static_cast<uint8_t*>(heap->Alloc(newCapacity + 1));
        memcpy(moved, data, used);
        heap->Free(data);
        data = moved;
        capacity = newCapacity;
    }

    IHeap* heap = Mem_DefaultHeap(0);
    uint8_t* data = nullptr;
    size_t used = 0;
    size_t capacity;
};

#endif
