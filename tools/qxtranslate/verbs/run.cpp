#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/wide_text.h"
#include "tools/qxtranslate/run/launch.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace qx {

namespace {

struct Options {
    std::vector<std::string> dictionaries;
    std::vector<std::string> modules;
    std::string record;
    std::string dump;
    double after = 3;
    std::vector<unsigned> commands;
    bool closes = false;
    bool wideBoxes = false;
    std::vector<std::string> program;
};

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

std::unique_ptr<AgentOrders> OrdersOf(const Options& options) {
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

int RunProgram(const Options& options) {
    auto orders = OrdersOf(options);
    ProgramFile record(options.record), dump(options.dump);
    PutPath(orders->record, record.Path());
    PutPath(orders->dump, dump.Path());
    {
        LaunchedProgram program(options.program);
        program.LoadAgent(*orders);
        program.Resume();
        if (!options.dump.empty() || !options.commands.empty() || options.closes) {
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
    return kDone;
}

}  // namespace

void DefineRun(CLI::App& app, Run& run) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("run", "Starts an unmodified program in another language");
    verb->add_option("--dictionary", options->dictionaries,
                     "Dictionary; without one nothing is translated")
        ->type_name("FILE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb->add_option("--module", options->modules,
                     "Translate this library too; the program and those of its folder are anyway")
        ->type_name("NAME")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb->add_option("--record", options->record, "Write every look-up to this file")
        ->type_name("FILE");
    verb->add_option("--dump", options->dump, "Write the texts of the live windows to this file")
        ->type_name("FILE");
    verb->add_option("--after", options->after, "When commands, dump and close come (3)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 3600.0));
    verb->add_option("--command", options->commands,
                     "Number of a menu command to send before the dump")
        ->type_name("ID")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb->add_flag("--close", options->closes, "Close the program then");
    verb->add_flag("--wide-boxes", options->wideBoxes,
                   "Translate the message boxes of the wide functions too");
    verb->add_option("PROGRAM", options->program, "The program and its arguments, behind --")
        ->required();
    verb->callback([options, &run] { run = [options] { return RunProgram(*options); }; });
}

}  // namespace qx
