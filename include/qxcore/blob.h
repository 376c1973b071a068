// A counted block of bytes.
//
//     QXBlob pixels(640 * 480);  // zeros
//     memset(pixels.data, 0xFF, pixels.size);
//     CQXVariant value(pixels);  // a copy
//
// Ownership: a tagQXBLOB owns nothing by itself; a QXBlob and a variant own their data, which is a
// block of the default heap.
//
// Errors: whatever allocates throws CXMemException; an assignment then leaves the blob empty.
// Threading: a blob belongs to one thread at a time.
#ifndef QXCORE_BLOB_H
#define QXCORE_BLOB_H

#include <qxcore/export.h>

struct tagQXBLOB {
    unsigned long size;  // bytes
    void* data;          // on the default heap; null counts as no bytes, whatever `size` says
};

// Owns its data. Assigning a blob to itself empties it.
class QXBlob : public tagQXBLOB {
public:
    // No bytes.
    QXBlob() : tagQXBLOB{0, nullptr} {}
    // `size` bytes of zero.
    QXCORE_API explicit QXBlob(unsigned long size);
    // Deep copies. A source without data gives its size and null data.
    QXCORE_API QXBlob(const tagQXBLOB* source);
    QXBlob(const tagQXBLOB& source) : QXBlob(&source) {}
    QXBlob(const QXBlob& source) : QXBlob(static_cast<const tagQXBLOB*>(&source)) {}
    ~QXBlob() { Clear(); }

    // Frees the data; size 0, data null.
    QXCORE_API void Clear();

    // As the constructors. The source may lie in the bytes that go.
    QXCORE_API QXBlob& operator=(const tagQXBLOB* source);
    QXBlob& operator=(const tagQXBLOB& source) { return *this = &source; }
    QXBlob& operator=(const QXBlob& source) {
        return *this = static_cast<const tagQXBLOB*>(&source);
    }

    // Same size and same bytes.
    QXCORE_API bool operator==(const tagQXBLOB* other) const;
    bool operator==(const tagQXBLOB& other) const { return *this == &other; }
    bool operator==(const QXBlob& other) const {
        return *this == static_cast<const tagQXBLOB*>(&other);
    }
};

#endif
