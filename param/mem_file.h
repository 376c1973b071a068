// A file in memory: a block that grows as it is written, or a caller's block of a fixed size.
#ifndef QXCORE_PARAM_MEM_FILE_H
#define QXCORE_PARAM_MEM_FILE_H

#include <qxcore/file.h>
#include <qxcore/heap.h>
#include <qxcore/reference.h>

namespace qx {

class CMemFile final : public CQXUnknownImpl<IXFile> {
public:
    // What WriteBytes answers when it has nothing to do, and when it has written.
    enum : int { kWritten = 0, kNothingToWrite = 40 };

    // Grows by whole steps of `growth` bytes in a heap of its own. Code 10 for a step of 0.
    explicit CMemFile(unsigned growth);
    // All of the block is content. It stays the caller's and outlives the file; what does not fit
    // throws CXMemException. Code 10 for a null block or a size of 0.
    CMemFile(void* block, unsigned size);
    ~CMemFile() override;

    unsigned Read(void* buffer, unsigned count) override;
    void Write(const void* buffer, unsigned count) override { WriteBytes(buffer, count); }
    // Capped at the end of what was written, so that a position is always inside; code 10 for
    // another origin.
    unsigned long long Seek(long long offset, int origin) override;
    unsigned long long Tell() override { return m_position; }
    int Flush() override { return 1; }
    // Throw CXException code 4 when nothing was left. A value cut off by the end comes back with
    // its missing bytes 0.
    unsigned char ReadByte() override { return ReadValue<unsigned char>(); }
    unsigned short ReadShort() override { return ReadValue<unsigned short>(); }
    unsigned ReadLong() override { return ReadValue<unsigned>(); }
    double ReadDouble() override { return ReadValue<double>(); }
    int ReadLine(char* buffer, int count) override;
    void WriteByte(unsigned char value) override { WriteBytes(&value, sizeof value); }
    void WriteShort(unsigned short value) override { WriteBytes(&value, sizeof value); }
    void WriteLong(unsigned value) override { WriteBytes(&value, sizeof value); }
    void WriteDouble(double value) override { WriteBytes(&value, sizeof value); }
    void WriteString(const char* text) override;
    unsigned long long GetLength() override { return m_used; }
    const char* GetPath() override { return "MemFile"; }

    int WriteBytes(const void* bytes, unsigned count);

private:
    Reference<IHeap> m_heap;  // null over a caller's block
    char* m_block = nullptr;
    size_t m_size = 0;  // allocated
    size_t m_used = 0;  // written: the content ends here
    size_t m_position = 0;
    size_t m_growth = 0;

    void Grow(size_t needed);
    template <class T>
    T ReadValue();
    [[noreturn]] static void RaiseEnd();
};

template <class T>
T CMemFile::ReadValue() {
    T value = {};
    if (!Read(&value, sizeof value)) RaiseEnd();
    return value;
}

}  // namespace qx

#endif
