// Values whose life the container tests watch.
#ifndef QXCORE_TESTS_CONTAINERS_WATCHED_H
#define QXCORE_TESTS_CONTAINERS_WATCHED_H

#include <qxcore.h>

// Tells when it is destroyed.
struct Owned {
    explicit Owned(int number = 0, int* destroyed = nullptr)
        : number(number), destroyed(destroyed) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() {
        if (destroyed) ++*destroyed;
    }

    int number;
    int* destroyed;
};

// Lives on the stack of a test, so that its count can be read at any time.
class Counted : public IQXUnknown {
public:
    unsigned AddRef() override { return ++refs; }
    unsigned Release() override { return --refs; }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return QXAnswerQuery(id == qx_typeid<IQXUnknown>() ? this : nullptr, out);
    }

    unsigned refs = 1;
};

// A counted object on the heap that tells when it is destroyed.
class Watched : public CQXUnknownImpl<IQXUnknown> {
public:
    explicit Watched(int* destroyed) : destroyed(destroyed) {}
    ~Watched() override { ++*destroyed; }

    int* destroyed;
};

// Its last release fails, after the object is gone, as that of a file does that cannot be closed.
class Raising : public Watched {
public:
    using Watched::Watched;
    unsigned Release() override {
        if (unsigned refs = InternalRelease()) return refs;
        throw CXException(2);
    }
};

// Two texts with the same hash: adding 1, -4, 6, -4, 1 to five bytes in a row changes it by (257 -
// 1)^4 = 2^32.
inline constexpr char kFirstOfTwins[] = "mmmmm";
inline constexpr char kSecondOfTwins[] = "nisin";

#endif
