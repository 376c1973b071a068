// What files whose bytes are seen through a window in memory share: reading, the position, typed access, lines.
#ifndef QXCORE_FILE_WINDOW_FILE_H
#define QXCORE_FILE_WINDOW_FILE_H

#include "file/guarded_copy.h"

#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/string.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

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
        if (m_position >= m_size) return 0;
        uint64_t left = m_size - m_position;
        if (count > left) count = unsigned(left);
        if (!InWindow(count)) return ReadAcross(static_cast<char*>(buffer), count);
        CopyOut(buffer, count);
        return count;
    }

    unsigned long long Seek(long long offset, int origin) final {
        uint64_t base = origin == QXSEEK_START ? 0 : origin == QXSEEK_CURRENT ? m_position : m_size;
        uint64_t target = base + uint64_t(offset);
        bool wraps = offset < 0 ? target > base : target < base;
        bool behindInput = m_mode == QXOP_READ && target > m_size;
        if (origin < QXSEEK_START || origin > QXSEEK_END || wraps || behindInput) Raise(QXERR_SEEK, m_mode);
        return m_position = target;
    }
    unsigned long long Tell() final { return Seek(0, QXSEEK_CURRENT); }

    unsigned char ReadByte() final { return ReadValue<unsigned char>(); }
    unsigned short ReadShort() final { return ReadValue<unsigned short>(); }
    unsigned ReadLong() final { return ReadValue<unsigned>(); }
    double ReadDouble() final { return ReadValue<double>(); }

    int ReadLine(char* buffer, int count) final {
        constexpr char kLineFeed = 10;
        char* cell = buffer;
        int i = 0;
        for (; i < count; ++i, ++cell) {
            if (!CWindowFile::Read(cell, 1) || *cell == kLineFeed) break;
        }
        // Behind the line feed, and at the end of the file behind a cell that nothing was read into.
        if (count > 0 && i < count - 1) ++cell;
        *cell = 0;
        return i;
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

    // The bytes at the position that the window shows.
    uint64_t Shown() const {
        uint64_t at = m_position - m_windowOffset;
        return at < m_windowLength ? m_windowLength - at : 0;
    }
    bool InWindow(unsigned count) const {
        uint64_t at = m_position - m_windowOffset;
        return at < m_windowLength && count <= m_windowLength - at;
    }
    // Where the byte at the position is shown. A number until it is used: a memory file's window may lie anywhere.
    void* Cell() const { return reinterpret_cast<void*>(m_window + (m_position - m_windowOffset)); }

    [[noreturn]] QXCORE_NOINLINE void Raise(int code, int operation) { throw CXFileException(code, m_path, operation); }

    CXString m_path;
    uint64_t m_position = 0;
    uint64_t m_size = 0;
    uintptr_t m_window = 0;
    uint64_t m_windowOffset = 0;
    uint64_t m_windowLength = 0;
    int m_mode;  // QXOP_READ or QXOP_WRITE

private:
    Self& Me() { return static_cast<Self&>(*this); }

    void CopyOut(void* buffer, unsigned count) {
        if (!GuardedCopy(buffer, Cell(), count)) Raise(QXERR_DEVICE, m_mode);
        m_position += count;
    }

    QXCORE_NOINLINE unsigned ReadAcross(char* buffer, unsigned count) {
        for (unsigned done = 0; done < count;) {
            if (!Shown()) Me().MoveWindow();
            auto part = unsigned(std::min<uint64_t>(Shown(), count - done));
            CopyOut(buffer + done, part);
            done += part;
        }
        return count;
    }

    template <class T>
    T ReadValue() {
        T value;
        if (CWindowFile::Read(&value, sizeof value) != sizeof value) Raise(QXERR_EOF, QXOP_READ);
        return value;
    }

    unsigned m_references = 1;
};

#endif
