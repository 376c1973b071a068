// What files whose bytes are seen through a window in memory share: reading, the position, typed
// access, lines.
#ifndef QXCORE_FILE_SHAPES_WINDOW_FILE_H
#define QXCORE_FILE_SHAPES_WINDOW_FILE_H

#include "file/platform/guarded_copy.h"

#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/string.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qx {

// Self is the class on top, I its interface. Self has
//     void Write(const void* bytes, unsigned count);
//     void MoveWindow();     brings the byte at the position into the window, or raises
//     unsigned End();        the last release
template <class Self, class I>
class CWindowFile : public CQXUnknownImpl<I> {
public:
    // These count for themselves; the template's own count stays at 1.
    unsigned AddRef() final { return ++m_references; }
    unsigned Release() final {
        if (m_references < 2) return Me().End();
        return --m_references;
    }

    unsigned Read(void* buffer, unsigned count) final {
        if (count > Readable()) return ReadAcross(static_cast<char*>(buffer), count);
        CopyOut(buffer, count);
        return count;
    }

    unsigned long long Seek(long long offset, int origin) final {
        uint64_t base = origin == QXSEEK_START ? 0 : origin == QXSEEK_CURRENT ? m_position : m_size;
        uint64_t target = base + uint64_t(offset);
        bool wraps = offset < 0 ? target > base : target < base;
        bool behindInput = m_mode == QXOP_READ && target > m_size;
        if (origin < QXSEEK_START || origin > QXSEEK_END || wraps || behindInput)
            Raise(QXERR_SEEK, m_mode);
        return m_position = target;
    }
    unsigned long long Tell() final { return Seek(0, QXSEEK_CURRENT); }

    unsigned char ReadByte() final { return ReadValue<unsigned char>(); }
    unsigned short ReadShort() final { return ReadValue<unsigned short>(); }
    unsigned ReadLong() final { return ReadValue<unsigned>(); }
    double ReadDouble() final { return ReadValue<double>(); }

    int ReadLine(char* buffer, int count) final {
        constexpr char kLineFeed = 10;
        int read = 0;
        bool ended = false;
        while (read < count && !ended && m_position < m_size) {
            if (!Readable()) Me().MoveWindow();
            read +=
                CopyLineOut(buffer + read, std::min<uint64_t>(Readable(), unsigned(count - read)));
            ended = buffer[read - 1] == kLineFeed;
        }
        if (ended) --read;
        char* cell = buffer + read;
        // Behind the line feed, and at the end of the file behind a cell that nothing was read
        // into.
        if (count > 0 && read < count - 1) ++cell;
        *cell = 0;
        return read;
    }

    void WriteByte(unsigned char value) final { Me().Self::Write(&value, sizeof value); }
    void WriteShort(unsigned short value) final { Me().Self::Write(&value, sizeof value); }
    void WriteLong(unsigned value) final { Me().Self::Write(&value, sizeof value); }
    void WriteDouble(double value) final { Me().Self::Write(&value, sizeof value); }
    void WriteString(const char* text) final { Me().Self::Write(text, unsigned(strlen(text) + 1)); }

    unsigned long long GetLength() final { return m_size; }
    const char* GetPath() final { return m_path; }

protected:
    CWindowFile(const char* path, int mode) : m_path(path), m_mode(mode) {}

    // The bytes at the position that the window shows, and those of them that belong to the file.
    uint64_t Shown() const { return Behind(m_windowLength); }
    uint64_t Readable() const { return Behind(m_readableLength); }

    void SetWindow(uintptr_t window, uint64_t offset, uint64_t length) {
        m_window = window;
        m_windowOffset = offset;
        m_windowLength = length;
        SetSize(m_size);
    }
    void SetSize(uint64_t size) {
        m_size = size;
        m_readableLength =
            size > m_windowOffset ? std::min(m_windowLength, size - m_windowOffset) : 0;
    }
    // Where the byte at the position is shown. A number until it is used: a memory file's window
    // may lie anywhere.
    void* Cell() const { return reinterpret_cast<void*>(m_window + (m_position - m_windowOffset)); }

    [[noreturn]] QXCORE_NOINLINE void Raise(int code, int operation) {
        throw CXFileException(code, m_path, operation);
    }

    uint64_t Size() const { return m_size; }

    CXString m_path;
    uint64_t m_position = 0;
    int m_mode;  // QXOP_READ or QXOP_WRITE

private:
    Self& Me() { return static_cast<Self&>(*this); }

    uint64_t Behind(uint64_t length) const {
        uint64_t at = m_position - m_windowOffset;
        return at < length ? length - at : 0;
    }

    void CopyOut(void* buffer, unsigned count) {
        if (!GuardedCopy(buffer, Cell(), count)) Raise(QXERR_DEVICE, m_mode);
        m_position += count;
    }

    int CopyLineOut(char* buffer, uint64_t count) {
        ptrdiff_t copied = GuardedCopyLine(buffer, Cell(), size_t(count));
        m_position += uint64_t(copied < 0 ? ~copied : copied);
        if (copied < 0) Raise(QXERR_DEVICE, m_mode);
        return int(copied);
    }

    QXCORE_NOINLINE unsigned ReadAcross(char* buffer, unsigned count) {
        if (m_position >= m_size) return 0;
        count = unsigned(std::min<uint64_t>(count, m_size - m_position));
        for (unsigned done = 0; done < count;) {
            if (!Readable()) Me().MoveWindow();
            auto part = unsigned(std::min<uint64_t>(Readable(), count - done));
            CopyOut(buffer + done, part);
            done += part;
        }
        return count;
    }

    template <class T>
    T ReadValue() {
        T value;
        if (Readable() >= sizeof value) {
            CopyOut(&value, sizeof value);
        } else if (ReadAcross(reinterpret_cast<char*>(&value), sizeof value) != sizeof value) {
            Raise(QXERR_EOF, QXOP_READ);
        }
        return value;
    }

    uint64_t m_size = 0;
    uintptr_t m_window = 0;
    uint64_t m_windowOffset = 0;
    uint64_t m_windowLength = 0;
    uint64_t m_readableLength = 0;
    unsigned m_references = 1;
};

}  // namespace qx

#endif
