#include "param/ini_text/ini_writer.h"

#include "param/ini_text/cut_text.h"
#include "param/ini_text/ini_value.h"
#include "param/ini_text/input_buffer.h"
#include "param/memory/value_walk.h"
#include "param/names/walk_stack.h"

#include <qxcore/exception.h>

namespace qx {

namespace {

constexpr char kLineEnd[] = "\r\n";
constexpr size_t kLineEndSize = sizeof kLineEnd - 1;

// One for all writers: they serve one thread at a time. The line end has room behind the text.
constinit char g_line[kIniLineSize] = {};
constinit char g_section[kIniLineSize] = {};
constexpr size_t kTextSize = sizeof g_line - kLineEndSize;
constexpr size_t kSectionSize = kTextSize - 2;  // with room for the brackets

class IniWriter {
public:
    IniWriter(IXFile* file, const char* section) : m_file(file) {
        CutText path(g_section, kSectionSize);
        if (section) path.Add(section);
        m_sectionSize = path.Size();
    }

    void Write(IParam* node) {
        Open(Hold(node), m_sectionSize);
        while (Level* level = m_levels.Top()) {
            if (!OpenNextChild(*level)) m_levels.Pop();
        }
    }

private:
    // A node whose values are written.
    struct Level {
        Reference<IParam> node;
        Reference<CTEnum<const char*>> children;
        size_t sectionSize;  // of its path, which begins the paths of all below it
    };

    IXFile* m_file;
    WalkStack<Level> m_levels;
    size_t m_sectionSize;

    void Open(Reference<IParam> node, size_t sectionSize) {
        WriteHeader(sectionSize);
        WriteValues(*node.Get());
        Reference<CTEnum<const char*>> children(node->EnumSubParams());
        m_levels.Push(Level{std::move(node), std::move(children), sectionSize});
    }

    bool OpenNextChild(Level& level) {
        const char* name;
        if (!level.children || !level.children->Next(1, &name, nullptr)) return false;
        CutText path(g_section, kSectionSize, level.sectionSize);
        path.Add('\\');
        path.Add(name);
        Reference<IParam> child(level.node->OpenSubParam(name, 0));
        if (child) Open(std::move(child), path.Size());
        return true;
    }

    void WriteHeader(size_t sectionSize) {
        CutText line(g_line, kTextSize);
        line.Add('[');
        line.Add(sectionSize ? g_section : "\\");
        line.Add(']');
        m_file->Write(kLineEnd, kLineEndSize);
        WriteLine(line);
    }

    void WriteValues(IParam& node) {
        ValueWalk values(node);
        while (const char* name = values.Next()) {
            if (!values.Read()) continue;
            CutText line(g_line, kTextSize);
            line.Add(name);
            line.Add('=');
            if (WriteIniValue(values.Value(), line)) WriteLine(line);
        }
    }

    void WriteLine(const CutText& line) {
        memcpy(g_line + line.Size(), kLineEnd, kLineEndSize);
        m_file->Write(g_line, static_cast<unsigned>(line.Size() + kLineEndSize));
    }
};

}  // namespace

void WriteIniText(IParam* node, IXFile* file, const char* section) {
    IniWriter(file, section).Write(node);
}

}  // namespace qx

int Param_Param2IniFile(IParam* param, const char* path) {
    if (!param) return 0;
    qx::Reference<IXOutFile> file(Fio_OpenOut(path, QXFIO_OUTPUT));
    if (!file) throw CXMemException();
    qx::WriteIniText(param, file.Get(), nullptr);
    file->Commit();
    file.Release();
    return 1;
}
