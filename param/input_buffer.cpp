#include "param/input_buffer.h"

#include <cstring>

namespace {

constexpr char kSeparator = '|';
constexpr char kComment = ';';

constinit char g_physicalLine[kIniLineSize + 1] = {};  // with room for the terminator behind a full line

}  // namespace

bool CInputBuffer::NextPhysicalLine() {
    int size = m_file->ReadLine(g_physicalLine, kIniLineSize);
    m_current = g_physicalLine;
    m_end = g_physicalLine + size;
    return size != 0;
}

void CInputBuffer::CutBlanks() {
    m_current = m_characters.SkipSpaceAnd(kSeparator, m_current, m_end);
    m_end = m_characters.TrimSpaceAnd(kSeparator, m_current, m_end);
}

bool CInputBuffer::NextLine(char* out, IniLine& line) {
    for (;;) {
        if (m_current == m_end && !NextPhysicalLine()) return false;
        CutBlanks();
        const char* stop = m_characters.FindEither(kSeparator, kComment, m_current, m_end);
        size_t size = stop - m_current;
        memcpy(out, m_current, size);
        out[size] = 0;
        m_current = stop < m_end && *stop == kComment ? m_end : stop;
        if (size == 0) continue;
        line = {out, out + size};
        return true;
    }
}
