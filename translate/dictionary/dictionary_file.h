// The text form of a dictionary: lines of a quoted source, each followed by a line with its quoted
// translation.
//
// One thread of the process at a time: all readers share one line buffer.
#ifndef QXCORE_TRANSLATE_DICTIONARY_FILE_H
#define QXCORE_TRANSLATE_DICTIONARY_FILE_H

#include <qxcore/dictionary.h>
#include <qxcore/file.h>

// Adds the file's texts to the dictionary and takes its font. A text already known keeps its
// translation. Throws CXFileException; what was read before stays.
void ReadWldFile(CWld& dictionary, const char* path);

// A key or a value as it stands in the file.
struct FileText {
    void Assign(const char* bytes, size_t size);
    void Unescape();

    CXString text;
    bool escaped = false;  // it may hold a backslash
};

// The next quoted text of the file. 0 at the end, which a line of a lone line feed means too;
// `text` then stays.
int ReadQuotedLine(IXFile* file, FileText& text);

#endif
