// The quoted texts of a dictionary file, one a line; all other lines are passed over.
//
// One thread of the process at a time: all readers share one line buffer.
#ifndef QXCORE_TRANSLATE_DICTIONARY_QUOTED_LINES_H
#define QXCORE_TRANSLATE_DICTIONARY_QUOTED_LINES_H

#include <qxcore/file.h>
#include <qxcore/string.h>

namespace qx {

// A text as it stands in the file, until it is unescaped.
struct QuotedText {
    void Assign(const char* bytes, size_t size);
    void Unescape();

    CXString text;
    bool isEscaped = false;  // it may hold a backslash
};

// The next quoted text of the file. False at the end, which a line of a lone line feed means too;
// `text` then stays.
bool ReadQuotedLine(IXFile* file, QuotedText& text);

}  // namespace qx

#endif
