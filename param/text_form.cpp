// Trees in one text: the lines of ini text, each ended by "|".
#include "param/ini_text/ini_reader.h"
#include "param/ini_text/ini_writer.h"
#include "param/ini_text/input_buffer.h"
#include "param/mem_file.h"

#include <qxcore/exception.h>
#include <qxcore/param.h>
#include <qxcore/string.h>

namespace qx {

namespace {

constexpr unsigned kGrowth = 1024;
constexpr char kLineMark = '|';

// Null when there is no memory for it.
Reference<CMemFile> NewMemFile() {
    try {
        return Make<CMemFile>(kGrowth);
    } catch (CXMemException&) {
        return nullptr;
    }
}

// The logical lines of ini text, each with its mark. They pass through the reader of lines, so
// empty ones vanish, and a ";" or "|" in a value cuts or splits it here already.
void JoinLines(CMemFile& ini, CMemFile& joined) {
    static char room[kIniLineSize + 1 + kIniSlack];
    const IniCharacters characters;
    CInputBuffer lines(Hold<IXFile>(&ini), characters);
    for (IniLine line; lines.NextLine(room, line);) {
        *line.end = kLineMark;
        joined.WriteBytes(line.begin, static_cast<unsigned>(line.end + 1 - line.begin));
    }
}

void TakeText(CMemFile& file, CXString& text) {
    auto size = static_cast<unsigned>(file.GetLength());
    file.Seek(0, QXSEEK_START);
    __CXBuff<CXString, char*> buffer(text, static_cast<int>(size));
    buffer.buffer[file.Read(buffer.buffer, size)] = 0;
}

}  // namespace

}  // namespace qx

int Param_Param2String(IParam* param, CXString& text) {
    qx::Reference<qx::CMemFile> ini = param ? qx::NewMemFile() : nullptr;
    qx::Reference<qx::CMemFile> joined = ini ? qx::NewMemFile() : nullptr;
    if (!joined) return 0;
    qx::WriteIniText(param, ini.Get(), nullptr);
    ini->Seek(0, QXSEEK_START);
    qx::JoinLines(*ini.Get(), *joined.Get());
    qx::TakeText(*joined.Get(), text);
    return 1;
}

int Param_String2Param(CXString& text, IParam* param) {
    qx::Reference<qx::CMemFile> file = param ? qx::NewMemFile() : nullptr;
    if (!file) return 0;
    file->WriteBytes(text.GetData(), static_cast<unsigned>(text.GetSize()));
    file->Seek(0, QXSEEK_START);
    return qx::ReadIniText(file.Get(), param);
}
