// The typed reads and writes, strings and variants of a stream class, over its Read and Write.
//
// Stream is the final class. It brings Read, Write, Seek, Tell, ReadString, GetLength and GetName,
// and may replace ReadValue and WriteBytes by its own.
#ifndef QXCORE_STORAGE_STREAMS_TYPED_STREAM_H
#define QXCORE_STORAGE_STREAMS_TYPED_STREAM_H

#include "storage/streams/stream_variant.h"

#include <qxcore/exception.h>

#include <cstring>

namespace qx {

template <class Stream, class Base = CQXUnknownImpl<IXStream>>
class CTypedStream : public Base {
public:
    using Base::Base;

    unsigned char ReadByte() override { return Self().template ReadValue<unsigned char>(); }
    unsigned short ReadShort() override { return Self().template ReadValue<unsigned short>(); }
    unsigned ReadLong() override { return Self().template ReadValue<unsigned>(); }
    double ReadDouble() override { return Self().template ReadValue<double>(); }

    int WriteByte(unsigned char value) override { return Self().WriteBytes(&value, sizeof value); }
    int WriteShort(unsigned short value) override {
        return Self().WriteBytes(&value, sizeof value);
    }
    int WriteLong(unsigned value) override { return Self().WriteBytes(&value, sizeof value); }
    int WriteDouble(double value) override { return Self().WriteBytes(&value, sizeof value); }
    int WriteString(const char* text) override {
        return Self().WriteBytes(text, static_cast<int>(strlen(text)) + 1);
    }

    int ReadVariant(tagQXVARIANT* variant) override { return ReadStreamVariant(this, variant); }
    void WriteVariant(const tagQXVARIANT* variant) override { WriteStreamVariant(this, variant); }

protected:
    // Only a read of nothing is the end: a value that the end cuts off passes, its missing bytes 0.
    template <class T>
    T ReadValue() {
        T value = 0;
        if (Self().Read(&value, sizeof value) == 0) throw CXEofException();
        return value;
    }
    int WriteBytes(const void* bytes, int count) { return Self().Write(bytes, count); }
    // Reads up to count bytes and stops at a line feed or NUL, which it puts into the buffer but
    // does not count.
    int ReadLine(char* buffer, int count) {
        int i = 0;
        while (i < count) {
            if (Self().Read(buffer + i, 1) == 0) throw CXEofException();
            if (buffer[i] == '\n' || buffer[i] == 0) break;
            ++i;
        }
        return i;
    }

private:
    Stream& Self() { return static_cast<Stream&>(*this); }
};

// Throws for an origin other than start, position and end.
inline void CheckOrigin(IXStream* stream, int origin) {
    if (origin < 0 || origin > 2)
        throw CXFileException(QXERR_BAD_USE, stream->GetName(), QXOP_SEEK);
}

// A seek that stops at the ends of the stream instead of failing.
inline int ClampedSeek(IXStream* stream, int position, int length, int offset, int origin) {
    CheckOrigin(stream, origin);
    const long long base[] = {0, position, length};
    long long target = base[origin] + offset;
    if (target < 0) return 0;
    return target > length ? length : static_cast<int>(target);
}

}  // namespace qx

#endif
