// The text hashes of the library: 32 bits, h * 257 + the byte as a signed char, with wrap-around.
//
// Bytes above 127 thus subtract. The bucket of a key is its hash modulo the number of buckets.
// Threading: any thread.
#ifndef QXCORE_HASH_H
#define QXCORE_HASH_H

#include <qxcore/export.h>

// A text's hash, and 257 to the power of its length: what it takes to put other text before it.
struct QXTextHash {
    unsigned hash;
    unsigned power;

    // The hash of prefix + text from the hash of the prefix, without building the text.
    constexpr unsigned Behind(unsigned prefixHash) const { return prefixHash * power + hash; }
};

// "Name" and "name" differ.
QXCORE_API QXTextHash QXHashText(const char* text) noexcept;
// "Name" and "name" are the same: 'A' to 'Z' count as lower case, a byte above 127 stays itself
// whatever the code page.
QXCORE_API QXTextHash QXHashFolded(const char* text) noexcept;

#endif
