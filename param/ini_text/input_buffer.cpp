#include "param/ini_text/input_buffer.h"

#include <cstring>

namespace qx {

namespace {

constexpr char kSeparator = '|';
constexpr char kComment = ';';

// With room for the terminator behind a full line.
constinit char g_physicalLine[kIniLineSize + 1 + kIniSlack] = {};

}  // namespace

bool CInputBuffer::NextPhysicalLine() {
    int size = m_file->ReadLine(g_physicalLine, kIniLineSize);
    m_current = g_physicalLine;
    m_end = g_physicalLine + size;
    return size != 0;
}

bool CInputBuffer::NextLine(char* out, IniLine& line) {
    constexpr unsigned kBetweenLines = kIniSpace | kIniSeparator;
    for (;;) {
        if (m_current == m_end && !NextPhysicalLine()) return false;
        m_current = m_characters.Skip(kBetweenLines, m_current, m_end);
        m_end = m_characters.Trim(kBetweenLines, m_current, m_end);
        char* stop = m_characters.FindEither(kSeparator, kComment, m_current, m_end);
        line = {out, out + (stop - m_current)};
        memcpy(out, m_current, stop - m_current);
        *line.end = 0;
        m_current = stop < m_end && *stop == kComment ? m_end : stop;
        if (line.begin < line.end) return true;
    }
}

}  // namespace qx
