#include "param/mem_file.h"

#include <qxcore/exception.h>

#include <algorithm>
#include <cstring>

namespace qx {

CMemFile::CMemFile(unsigned growth) : m_growth(growth) {
    if (growth == 0) throw CXException(QXERR_BAD_USE);
    m_heap = Reference<IHeap>(new_MemoryHeap(0));
    if (!m_heap) throw CXMemException();
}

CMemFile::CMemFile(void* block, unsigned size)
    : m_block(static_cast<char*>(block)), m_size(size), m_used(size) {
    if (!block || size == 0) throw CXException(QXERR_BAD_USE);
}

CMemFile::~CMemFile() {
    if (m_heap && m_block) m_heap->Free(m_block);
}

unsigned CMemFile::Read(void* buffer, unsigned count) {
    if (!buffer) return 0;
    size_t size = std::min<size_t>(count, m_used - m_position);
    if (size) memcpy(buffer, m_block + m_position, size);
    m_position += size;
    return static_cast<unsigned>(size);
}

int CMemFile::WriteBytes(const void* bytes, unsigned count) {
    if (!bytes || count == 0) return kNothingToWrite;
    size_t end = m_position + count;
    if (end > m_size) Grow(end);
    memcpy(m_block + m_position, bytes, count);
    m_position = end;
    m_used = std::max(m_used, end);
    return kWritten;
}

// Whole steps are added, as many as are needed and at least as many as double the block, so that a
// text of any size is moved a few times only. The heap's own way of moving a block would lose the
// last bytes of one that grows by less than a header.
void CMemFile::Grow(size_t needed) {
    if (!m_heap) throw CXMemException();
    size_t missing = std::max(needed - m_size, m_size);
    size_t size = m_size + (missing + m_growth - 1) / m_growth * m_growth;
    auto block = static_cast<char*>(m_heap->Alloc(size));
    if (m_block) {
        if (m_used) memcpy(block, m_block, m_used);
        m_heap->Free(m_block);
    }
    m_block = block;
    m_size = size;
}

unsigned long long CMemFile::Seek(long long offset, int origin) {
    if (origin < QXSEEK_START || origin > QXSEEK_END)
        throw CXFileException(QXERR_BAD_USE, GetPath(), QXOP_SEEK);
    size_t base = origin == QXSEEK_START ? 0 : origin == QXSEEK_CURRENT ? m_position : m_used;
    auto back = static_cast<unsigned long long>(-(offset + 1)) + 1;
    if (offset < 0) {
        m_position = back < base ? base - static_cast<size_t>(back) : 0;
    } else {
        m_position = base + std::min<size_t>(static_cast<size_t>(offset), m_used - base);
    }
    return m_position;
}

int CMemFile::ReadLine(char* buffer, int count) {
    constexpr char kLineFeed = 10;
    const char* from = m_block + m_position;
    size_t size = count > 0 ? std::min<size_t>(static_cast<size_t>(count), m_used - m_position) : 0;
    const void* lineFeed = size ? memchr(from, kLineFeed, size) : nullptr;
    if (lineFeed) size = static_cast<size_t>(static_cast<const char*>(lineFeed) - from) + 1;
    if (size) memcpy(buffer, from, size);
    m_position += size;
    int read = static_cast<int>(lineFeed ? size - 1 : size);
    // Behind the line feed, and at the end of the file behind a cell that nothing was read into.
    buffer[read < count - 1 ? read + 1 : read] = 0;
    return read;
}

void CMemFile::WriteString(const char* text) {
    WriteBytes(text, static_cast<unsigned>(strlen(text) + 1));
}

void CMemFile::RaiseEnd() {
    throw CXException(QXERR_EOF);
}

}  // namespace qx
