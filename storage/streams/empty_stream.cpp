#include "storage/streams/typed_stream.h"

#include <qxcore/variant.h>

#include <new>

namespace qx {

namespace {

// Swallows writes and reads as zeros. A seek finds one byte, and nothing but a seek moves the
// position.
class CEmptyStream final : public CTypedStream<CEmptyStream> {
public:
    int Read(void* buffer, int count) override {
        if (count > 0) memset(buffer, 0, count);
        return 1;
    }
    int Write(const void*, int) override { return 0; }
    int Seek(int offset, int origin) override {
        return m_position = ClampedSeek(this, m_position, m_length, offset, origin);
    }
    int Tell() override { return m_position; }
    int ReadString(char* buffer, int) override {
        buffer[0] = 0;
        return 1;
    }
    int ReadVariant(tagQXVARIANT* variant) override {
        QXVariantClear(variant);
        return 1;
    }
    void WriteVariant(const tagQXVARIANT*) override {}
    int WriteString(const char*) override { return 0; }
    int GetLength() override { return m_length; }
    const char* GetName() override { return "Empty stream"; }

private:
    int m_position = 0;
    const int m_length = 1;
};

}  // namespace

}  // namespace qx

IXStream* new_EmptyStream() {
    return new (std::nothrow) qx::CEmptyStream;
}
