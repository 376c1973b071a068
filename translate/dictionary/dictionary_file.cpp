// The text form of a dictionary: lines of a quoted source, each followed by a line with its quoted
// translation.
#include "translate/dictionary/dictionary.h"
#include "translate/dictionary/quoted_lines.h"

#include <qxcore/exception.h>
#include <qxcore/reference.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace qx {

namespace {

// The dialog font as the settings of one file give it.
class FontSettings {
public:
    // False when the key is no setting.
    bool Take(const char* key, const CXString& value) {
        constexpr char kPrefix[] = "DialogFont";
        if (*key != *kPrefix || strncmp(key, kPrefix, sizeof kPrefix - 1)) return false;
        const char* setting = key + sizeof kPrefix - 1;
        if (!strcmp(setting, "Name")) {
            value.CopyFit(m_name, sizeof m_name);
        } else if (!strcmp(setting, "Script")) {
            m_script = atoi(value);
        } else if (!strcmp(setting, "Size")) {
            m_size = atoi(value);
        } else {
            return false;
        }
        ++m_count;
        return true;
    }

    // Only a file with three settings changes the font. They are counted, not told apart: one key
    // written three times is enough.
    void Apply(CWld& dictionary) const {
        if (m_count >= 3) dictionary.SetDialogFont(m_script, m_size, m_name);
    }

private:
    char m_name[512] = "";
    int m_script = 0;
    int m_size = 0;
    int m_count = 0;
};

// The first translation of a text stands, also an empty one. The entry shares the texts just read.
void AddText(CWld& dictionary, QuotedText& source, QuotedText& target) {
    source.Unescape();
    target.Unescape();
    unsigned hash = QXHashText(source.text).hash;
    if (dictionary.m_Contexts.FindHash(hash)) return;
    auto context = std::make_unique<CContext>(nullptr, nullptr);
    context->source = source.text;
    context->target = target.text;
    if (dictionary.m_Contexts.SetAtHash(hash, source.text, context.get())) context.release();
}

// Adds the file's texts to the dictionary and takes its font. A text already known keeps its
// translation. What was read before a failure stays.
void ReadWldFile(CWld& dictionary, const char* path) {
    Reference<IXFile> file(Fio_Open(path, 0));
    if (!file) throw CXMemException();
    QuotedText key, value;
    FontSettings font;
    while (ReadQuotedLine(file.Get(), key)) {
        // A key without a value gets the value before it.
        ReadQuotedLine(file.Get(), value);
        if (!font.Take(key.text, value.text)) AddText(dictionary, key, value);
    }
    font.Apply(dictionary);
    file.Release();  // the caller learns of a failure to close
}

// The geometry beside a dictionary may be missing or unreadable.
void ReadGeometryBeside(CWld& dictionary, const char* path) {
    CXString geometry(path);
    geometry.ChangeFileExt("dlg");
    ReadDlgFile(dictionary, geometry);
}

}  // namespace

}  // namespace qx

int CWld::Init(const char* path) {
    return m_bInit ? 1 : Add(path);
}

int CWld::Add(const char* path) {
    try {
        qx::ReadWldFile(*this, path);
        qx::ReadGeometryBeside(*this, path);
    } catch (CXFileException&) {
        return 0;
    }
    m_bInit = 1;
    return 1;
}
