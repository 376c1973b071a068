// Copies that survive an unreadable page.
//
// A mapped file raises a fault of the processor where its disk fails, and a memory file's address
// may be wrong. These copies answer false then, having copied some of the bytes or none; the
// process goes on. Safe in every thread.
#ifndef QXCORE_FILE_PLATFORM_GUARDED_COPY_H
#define QXCORE_FILE_PLATFORM_GUARDED_COPY_H

#include <cstddef>

extern "C" {
int qx_guarded_copy_1(void* to, const void* from);
int qx_guarded_copy_2(void* to, const void* from);
int qx_guarded_copy_4(void* to, const void* from);
int qx_guarded_copy_8(void* to, const void* from);
int qx_guarded_copy_block(void* to, const void* from, size_t count);
ptrdiff_t qx_guarded_copy_line(char* to, const char* from, size_t count);
}

namespace qx {

// The sizes of the typed reads and writes are one load and one store each.
inline bool GuardedCopy(void* to, const void* from, size_t count) {
    switch (count) {
        case 1:
            return qx_guarded_copy_1(to, from);
        case 2:
            return qx_guarded_copy_2(to, from);
        case 4:
            return qx_guarded_copy_4(to, from);
        case 8:
            return qx_guarded_copy_8(to, from);
        default:
            return qx_guarded_copy_block(to, from, count);
    }
}

// Copies up to and with the next line feed, at most `count` bytes. Answers how many, or, where one
// cannot be copied, the complement of the number before it.
inline ptrdiff_t GuardedCopyLine(char* to, const void* from, size_t count) {
    return qx_guarded_copy_line(to, static_cast<const char*>(from), count);
}

}  // namespace qx

#endif
