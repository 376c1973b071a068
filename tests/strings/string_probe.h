// A string class with its protected members opened, for tests of the text's header and of the guards' operations.
#ifndef QXCORE_TESTS_STRING_PROBE_H
#define QXCORE_TESTS_STRING_PROBE_H

#include <qxcore.h>

#include <cstdarg>

template <class S>
struct StringProbe : S {
    using S::AllocBuffer;
    using S::AssignCopy;
    using S::ConcatCopy;
    using S::ConcatCopyTo;
    using S::data;
    using S::FormatV;
    using S::GetAllocSize;
    using S::Init;
    using S::ReallocBuffer;
    using S::Release;
    using S::S;

    StringProbe() = default;
    StringProbe(const S& s) : S(s) {}

    int refs() const { return Field(-3); }
    int size() const { return Field(-2); }
    int alloc() const { return Field(-1); }

    template <class Ch>
    int Sized(const Ch* format, ...) {
        va_list args;
        va_start(args, format);
        int size = FormatV(format, args);
        va_end(args);
        return size;
    }

private:
    int Field(int i) const { return reinterpret_cast<const int*>(this->data)[i]; }
};

using Probe = StringProbe<CXString>;
using ProbeW = StringProbe<CXStringW>;

// The reference count of any string's text.
template <class S>
int RefsOf(const S& s) {
    return reinterpret_cast<const int*>(s.GetData(0))[-3];
}
template <class S>
int AllocOf(const S& s) {
    return reinterpret_cast<const int*>(s.GetData(0))[-1];
}

#endif
