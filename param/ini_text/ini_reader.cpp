#include "param/ini_text/ini_reader.h"

#include "param/ini_text/ini_value.h"
#include "param/ini_text/input_buffer.h"

#include <qxcore/exception.h>
#include <qxcore/list.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

#include <mbstring.h>
#include <memory>

namespace qx {

namespace {

// One for all reads: the reader serves one thread at a time.
constinit char g_logicalLine[kIniLineSize + 1 + kIniSlack] = {};

// One read: a stack of files, each included by the one below it, and the node that keys go to.
class IniReader {
public:
    IniReader(IXFile* file, IParam* root) : m_root(root), m_base(DirectoryOf(file->GetPath())) {
        Push(Hold(file));
    }

    void Read() {
        while (CInputBuffer* top = Top()) {
            IniLine line;
            if (top->NextLine(g_logicalLine, line)) {
                ReadLine(line.begin, line.end);
            } else {
                PopEnded(*top);
            }
        }
    }

private:
    using Stack = CTPList<CInputBuffer*>;

    const IniCharacters m_characters;
    IParam* m_root;
    CXString m_base;  // directory of the outermost file, with its delimiter
    Stack m_stack;
    Reference<IParam> m_current;  // null before the first section header

    CInputBuffer* Top() {
        auto tail = static_cast<Stack::position>(m_stack.tail);
        return tail ? *m_stack.GetNext(tail) : nullptr;
    }

    void Push(Reference<IXFile> file) {
        auto buffer = std::make_unique<CInputBuffer>(std::move(file), m_characters);
        m_stack.AddTail(buffer.get());
        buffer.release();
    }

    // A file that cannot be closed is told, when it has left the stack.
    void PopEnded(CInputBuffer& top) {
        Reference<IXFile> file = top.TakeFile();
        m_stack.RemoveAt(static_cast<Stack::position>(m_stack.tail));
        file.Release();
    }

    // A file without a directory part has an empty base.
    static CXString DirectoryOf(const char* path) {
        CXString directory = CXString(path).FilePath();
        if (*directory) directory.AddDirDelim();
        return directory;
    }

    void ReadLine(char* begin, char* end) {
        begin = m_characters.Skip(kIniSpace, begin, end);
        end = m_characters.Trim(kIniSpace, begin, end);
        *end = 0;
        if (begin == end || m_characters.Next(begin, end) == end) return;  // too short
        if (*begin == 0 && *m_characters.Previous(begin, end) == 0)
            throw CXException(QXERR_INI_LINE);
        if (*begin == '#' && ReadDirective(begin, end)) return;
        if (*begin == '[') {
            ReadSection(begin, end);
        } else if (m_current) {
            ReadKey(begin, end);
        }
    }

    // True if the line is a directive, also one without a meaning.
    bool ReadDirective(char* begin, char* end) {
        char* word = m_characters.Skip(kIniSpace, begin + 1, end);
        if (word >= m_characters.Previous(begin, end)) return false;
        char* wordEnd = m_characters.FindSpace(word, end);
        char* argument = m_characters.Skip(kIniSpace, wordEnd, end);
        char* argumentEnd = m_characters.FindSpace(argument, end);
        *wordEnd = *argumentEnd = 0;
        if (argument < argumentEnd && IsInclude(word))
            Include(CXString(argument), argumentEnd == end);
        return true;
    }

    static bool IsInclude(const char* word) {
        auto bytes = [](const char* text) { return reinterpret_cast<const unsigned char*>(text); };
        return _mbsicmp(bytes(word), bytes("include")) == 0;
    }

    // The argument has no blank in it. A quote behind it is dropped where the line ends. One that
    // starts with "." stands beside the including file, with the directory of the outermost file
    // before it all the same.
    void Include(CXString argument, bool endsLine) {
        constexpr char kQuote = '"';
        if (argument.GetAt(0) == kQuote) argument.Delete(0, 1);
        int last = argument.GetLength() - 1;
        if (endsLine && last >= 0 && argument.GetAt(last) == kQuote) argument.Delete(last, 1);
        if (argument.GetAt(0) == '.') argument = BesideTopFile(argument);
        CXString path = m_base + argument;
        Reference<IXFile> file(Fio_Open(path, 0));
        if (!file) throw CXMemException();
        Push(std::move(file));
    }

    CXString BesideTopFile(const CXString& name) {
        CXString directory(Top()->File()->GetPath());
        int delimiter = directory.FindRev('\\');
        if (delimiter < 0) delimiter = directory.FindRev('/');
        directory.Delete(delimiter + 1, directory.GetLength());
        return directory + name;
    }

    // "[\a\b" with or without "]". The first two characters go unread, so "[a]" and "[]" name the
    // root like "[\]".
    void ReadSection(char* begin, char* end) {
        m_current = Hold(m_root);
        if (*m_characters.Previous(begin, end) == ']') *--end = 0;
        char* p = begin;
        for (int i = 0; i < 2 && p < end; ++i) p = m_characters.Next(p, end);
        while (p < end && m_current) {
            char* delimiter = m_characters.Find('\\', p, end);
            char* next =
                *delimiter ? delimiter + 1 : end;  // behind a NUL there are no further levels
            *delimiter = 0;
            m_current = Reference<IParam>(m_current->OpenSubParam(p, 1));
            p = next;
        }
    }

    // "key = value", or a key alone, which is the int 0. A value that cannot be read has no effect.
    void ReadKey(char* begin, char* end) {
        auto value = tagQXVARIANT();
        char* equals = m_characters.Find('=', begin, end);
        if (*equals != '=') {
            value.type = QXVT_INT;
            m_current->SetValue(begin, &value);
            return;
        }
        char* text = m_characters.Skip(kIniSpace, equals + 1, end);
        *m_characters.Trim(kIniSpace, begin, equals) = 0;
        // What is read owns nothing: a string is borrowed from the line.
        if (ReadIniValue(text, value)) m_current->SetValue(begin, &value);
    }
};

}  // namespace

int ReadIniText(IXFile* file, IParam* root) {
    if (!file || !root) return 0;
    IniReader(file, root).Read();
    return 1;
}

}  // namespace qx

int Param_IniFile2Param(const char* path, IParam* param) {
    qx::Reference<IXFile> file(Fio_Open(path, 0));
    int result = qx::ReadIniText(file.Get(), param);
    file.Release();  // a file that cannot be closed is told
    return result;
}
