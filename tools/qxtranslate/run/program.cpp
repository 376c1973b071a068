#include "tools/qxtranslate/run/program.h"

#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/wide_text.h"
#include "tools/qxtranslate/run/launch.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace qx {

namespace {

// Libraries on which the system itself stands: calls from them are not the program's.
constexpr const char* kNotPatched[] = {
    "ntdll.dll", "kernel32.dll", "kernelbase.dll", "user32.dll", "win32u.dll",
    "gdi32.dll", "msvcrt.dll",   "ucrtbase.dll",   "qxcore.dll", "qxagent.dll",
};

void RequirePatchable(const std::string& module) {
    for (const char* name : kNotPatched) {
        if (LowerAscii(FileName(module)) != name) continue;
        throw BadInput(module +
                       " must not be patched: the system itself, or the translation, "
                       "stands on it, and its calls are not the program's");
    }
}

std::wstring FullPath(const std::string& path) {
    wchar_t full[kOrderPath] = L"";
    DWORD length = GetFullPathNameW(ToWide(path).c_str(), kOrderPath, full, nullptr);
    if (!length || length >= kOrderPath) throw BadInput(path + " is too long a path");
    return full;
}

void PutPath(wchar_t (&place)[kOrderPath], const std::string& path) {
    if (!path.empty()) wcscpy(place, FullPath(path).c_str());
}

void PutList(wchar_t (&place)[kOrderList], const std::vector<std::wstring>& list) {
    size_t at = 0;
    for (const std::wstring& text : list) {
        if (at + text.size() + 2 > kOrderList) throw BadInput("there are too many files");
        wcscpy(place + at, text.c_str());
        at += text.size() + 1;
    }
}

std::unique_ptr<AgentOrders> OrdersOf(const RunOptions& options) {
    auto orders = std::make_unique<AgentOrders>();
    std::vector<std::wstring> dictionaries, modules;
    for (const std::string& path : options.dictionaries) {
        ReadBytes(path);
        dictionaries.push_back(FullPath(path));
    }
    for (const std::string& module : options.modules) {
        RequirePatchable(module);
        modules.push_back(ToWide(FileName(module)));
    }
    PutList(orders->dictionaries, dictionaries);
    PutList(orders->modules, modules);
    orders->wideBoxes = options.wideBoxes;
    return orders;
}

// A file that the program writes beside its target; it becomes the target when all is well.
class ProgramFile {
public:
    explicit ProgramFile(const std::string& target) : m_target(target) {
        if (target.empty()) return;
        m_aside = target + "." + std::to_string(GetCurrentProcessId()) + ".tmp";
        // Before the program runs is the time to find that it could not write.
        FILE* file = _wfopen(ToWide(m_aside).c_str(), L"wb");
        if (!file) throw BadInput(target + " cannot be written: " + std::strerror(errno));
        fclose(file);
    }
    ProgramFile(const ProgramFile&) = delete;
    ProgramFile& operator=(const ProgramFile&) = delete;
    ~ProgramFile() {
        if (!m_aside.empty()) DeleteFileW(ToWide(m_aside).c_str());
    }
    const std::string& Path() const { return m_aside; }
    void Keep() {
        if (m_aside.empty()) return;
        if (!MoveFileExW(ToWide(m_aside).c_str(), ToWide(m_target).c_str(),
                         MOVEFILE_REPLACE_EXISTING))
            throw BadInput(m_target + " cannot be written");
        m_aside.clear();
    }

private:
    std::string m_target;
    std::string m_aside;
};

void RequireFilesApart(const RunOptions& options) {
    std::vector<std::string> inputs = options.dictionaries;
    inputs.push_back(options.program.front());
    RequireApart(options.record, inputs);
    RequireApart(options.dump, inputs);
    if (!options.record.empty() && options.record == options.dump)
        throw BadInput("the record and the dump need a file each");
}

}  // namespace

void RunProgram(const RunOptions& options) {
    RequireFilesApart(options);
    auto orders = OrdersOf(options);
    ProgramFile record(options.record), dump(options.dump);
    PutPath(orders->record, record.Path());
    PutPath(orders->dump, dump.Path());
    {
        LaunchedProgram program(options.program);
        bool asks = !options.dump.empty() || !options.commands.empty() || options.closes;
        program.LoadAgent(*orders, asks);
        program.Resume();
        if (asks) {
            program.AwaitWindow();
            program.EndsWithin(static_cast<DWORD>(options.after * 1000));
            program.Settle();
        }
        for (unsigned command : options.commands) program.SendCommand(command);
        if (!options.dump.empty()) program.Dump();
        if (options.closes) program.Close();
        program.EndsWithin(INFINITE);
        if (!program.HasWholeRecord()) throw BadInput(options.record + " cannot be written");
    }
    record.Keep();
    dump.Keep();
}

}  // namespace qx
