// Cuts a file into the logical lines of ini text.
//
// A physical line is what the file's ReadLine delivers; "|" divides it into logical lines, and ";"
// starts a comment that runs to its end, wherever it stands. There is no way to escape either. A
// physical line of no bytes, a lone line feed, ends the input like the end of the file; one with a
// carriage return does not.
#ifndef QXCORE_PARAM_INI_TEXT_INPUT_BUFFER_H
#define QXCORE_PARAM_INI_TEXT_INPUT_BUFFER_H

#include "param/ini_text/ini_characters.h"

#include <qxcore/file.h>
#include <qxcore/reference.h>

namespace qx {

// The longest line in bytes; a longer one comes in pieces that are lines of their own.
inline constexpr int kIniLineSize = 8192;

// A logical line: a range in its owner's buffer, where a NUL may be written at the end.
struct IniLine {
    char* begin;
    char* end;
};

class CInputBuffer {
public:
    CInputBuffer(Reference<IXFile> file, const IniCharacters& characters)
        : m_file(std::move(file)), m_characters(characters) {}

    // False at the end of the input. The line is copied to `out`, which holds kIniLineSize + 1 +
    // kIniSlack bytes.
    bool NextLine(char* out, IniLine& line);
    IXFile* File() const { return m_file.Get(); }
    // For an end whose failure is told. REQUIRES: nothing is read afterwards.
    Reference<IXFile> TakeFile() { return std::move(m_file); }

private:
    Reference<IXFile> m_file;
    const IniCharacters& m_characters;
    // What is left of the physical line. The buffer behind it is one for all instances, so what
    // stands behind an include on its line is lost to the included file.
    char* m_current = nullptr;
    char* m_end = nullptr;

    bool NextPhysicalLine();
};

}  // namespace qx

#endif
