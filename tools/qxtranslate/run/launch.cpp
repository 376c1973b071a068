#include "tools/qxtranslate/run/launch.h"

#include "tools/qxtranslate/model/pe/image.h"
#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/wide_text.h"

#include <tlhelp32.h>

#include <algorithm>
#include <set>

namespace qx {

namespace {

constexpr DWORD kPatience = 60000;
constexpr DWORD kClosePatience = 5000;
constexpr const wchar_t* kLibrary = L"qxcore.dll";
constexpr const wchar_t* kAgent = L"qxagent.dll";
constexpr uint16_t kMachine64 = 0x8664;
constexpr DWORD kElevationRequired = 740;  // not in every platform header

std::string SystemMessage(DWORD error) {
    wchar_t text[512] = L"";
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, error, 0, text, 512, nullptr);
    std::wstring message(text, length);
    while (!message.empty() && (message.back() <= L' ' || message.back() == L'.'))
        message.pop_back();
    return message.empty() ? "error " + std::to_string(error) : FromWide(message);
}

std::wstring FindProgram(const std::string& name) {
    wchar_t path[1024] = L"";
    DWORD length = SearchPathW(nullptr, ToWide(name).c_str(), L".exe", 1024, path, nullptr);
    if (!length || length >= 1024) throw BadInput(name + " cannot be started: it was not found");
    return path;
}

void RequireSixtyFourBits(const std::wstring& path) {
    ParseFile(FromWide(path), [&](Bytes file) {
        PeImage image(file);
        if (!image.Is64Bit())
            throw BadInput("is a 32-bit program; only 64-bit programs can be run translated");
        if (image.Machine() != kMachine64)
            throw BadInput("is a program for another processor than x86-64");
    });
}

// As the runtime of the other side takes it apart again.
std::wstring Quote(const std::wstring& word) {
    if (!word.empty() && word.find_first_of(L" \t\"") == std::wstring::npos) return word;
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (wchar_t c : word) {
        if (c == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    quoted.append(backslashes, L'\\');
    return quoted + L"\"";
}

std::wstring CommandLine(const std::wstring& program, const std::vector<std::string>& words) {
    std::wstring line = Quote(program);
    for (size_t i = 1; i < words.size(); ++i) line += L" " + Quote(ToWide(words[i]));
    return line;
}

// A library that lies beside this program.
std::wstring Beside(const wchar_t* name) {
    wchar_t path[1024] = L"";
    GetModuleFileNameW(nullptr, path, 1024);
    std::wstring own(path);
    return own.substr(0, own.find_last_of(L"\\/") + 1) + name;
}

// The visible top-level windows of a process, those without an owner first.
std::vector<HWND> WindowsOf(DWORD process) {
    struct Search {
        DWORD process;
        std::vector<HWND> windows;
    } search = {process, {}};
    EnumWindows(
        [](HWND window, LPARAM lparam) -> BOOL {
            auto& s = *reinterpret_cast<Search*>(lparam);
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner == s.process && IsWindowVisible(window)) s.windows.push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    std::stable_sort(search.windows.begin(), search.windows.end(), [](HWND a, HWND b) {
        return !GetWindow(a, GW_OWNER) && GetWindow(b, GW_OWNER);
    });
    return search.windows;
}

}  // namespace

LaunchedProgram::LaunchedProgram(const std::vector<std::string>& words) : m_name(words.at(0)) {
    std::wstring program = FindProgram(m_name);
    RequireSixtyFourBits(program);
    std::wstring line = CommandLine(program, words);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED,
                        nullptr, nullptr, &startup, &process)) {
        DWORD error = GetLastError();
        throw BadInput(m_name + " cannot be started: " +
                       (error == kElevationRequired
                            ? "it asks for the rights of an administrator, which it does not get"
                            : SystemMessage(error)));
    }
    m_process = Handle(process.hProcess);
    m_thread = Handle(process.hThread);
    m_processId = process.dwProcessId;
    m_threadId = process.dwThreadId;
}

LaunchedProgram::~LaunchedProgram() {
    if (EndsWithin(0)) return;
    TerminateProcess(m_process, 1);
    WaitForSingleObject(m_process, kPatience);
}

bool LaunchedProgram::EndsWithin(DWORD milliseconds) const {
    return WaitForSingleObject(m_process, milliseconds) == WAIT_OBJECT_0;
}

void* LaunchedProgram::WriteRemote(const void* bytes, size_t size) {
    void* memory = VirtualAllocEx(m_process, nullptr, size, MEM_COMMIT, PAGE_READWRITE);
    if (!memory || !WriteProcessMemory(m_process, memory, bytes, size, nullptr))
        throw BadInput(m_name + ": its memory cannot be written: " + SystemMessage(GetLastError()));
    return memory;
}

DWORD LaunchedProgram::RunRemote(void* function, void* argument) {
    Handle thread(CreateRemoteThread(m_process, nullptr, 0,
                                     reinterpret_cast<LPTHREAD_START_ROUTINE>(function), argument,
                                     0, nullptr));
    if (!thread)
        throw BadInput(m_name +
                       ": nothing can be loaded into it: " + SystemMessage(GetLastError()));
    HANDLE ends[] = {thread, m_process};
    if (WaitForMultipleObjects(2, ends, FALSE, kPatience) != WAIT_OBJECT_0 || EndsWithin(0))
        throw BadInput(m_name + (EndsWithin(0) ? " ended at once" : " does not answer"));
    DWORD answer = 0;
    GetExitCodeThread(thread, &answer);
    return answer;
}

// Where an entry of the agent lies in the program.
void* LaunchedProgram::Remote(const char* entry) const {
    Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, m_processId));
    MODULEENTRY32W module = {};
    module.dwSize = sizeof module;
    BOOL more = Module32FirstW(snapshot, &module);
    while (more && _wcsicmp(module.szModule, kAgent)) more = Module32NextW(snapshot, &module);
    HMODULE own = LoadLibraryExW(Beside(kAgent).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    auto local = own ? reinterpret_cast<char*>(GetProcAddress(own, entry)) : nullptr;
    if (!more) throw BadInput(m_name + ": qxagent.dll is not among its modules");
    if (!local) throw BadInput(FromWide(Beside(kAgent)) + " cannot be read");
    return module.modBaseAddr + (local - reinterpret_cast<char*>(own));
}

void LaunchedProgram::LoadRemote(const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        throw BadInput(FromWide(path) + " is missing");
    auto load =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW"));
    if (!RunRemote(load, WriteRemote(path.c_str(), (path.size() + 1) * sizeof(wchar_t))))
        throw BadInput(FromWide(path) + " could not be loaded into " + m_name);
}

// An event of which the program has a handle too, which is the result.
HANDLE LaunchedProgram::SharedEvent(Handle& own) const {
    own = Handle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    HANDLE theirs = nullptr;
    if (!DuplicateHandle(GetCurrentProcess(), own, m_process, &theirs, 0, FALSE,
                         DUPLICATE_SAME_ACCESS))
        throw BadInput(m_name + " cannot be asked: " + SystemMessage(GetLastError()));
    return theirs;
}

void LaunchedProgram::LoadAgent(AgentOrders& orders, bool asks) {
    orders.mainThread = m_threadId;
    orders.recordFailed = SharedEvent(m_recordFailed);
    if (asks) {
        orders.settleWanted = SharedEvent(m_settleWanted);
        orders.dumpWanted = SharedEvent(m_dumpWanted);
        orders.done = SharedEvent(m_done);
        orders.failed = SharedEvent(m_failed);
    }
    // The agent needs the library, which the system would look for beside the program.
    for (const wchar_t* name : {kLibrary, kAgent}) LoadRemote(Beside(name));
    switch (RunRemote(Remote(kAgentStart), WriteRemote(&orders, sizeof orders))) {
        case kAgentDone:
            return;
        case kAgentNoDictionary:
            throw BadInput("the program cannot read the dictionary");
        case kAgentNoRecord:
            throw BadInput("the program cannot write the record");
    }
    throw BadInput(m_name + ": the agent failed");
}

void LaunchedProgram::Resume() {
    ResumeThread(m_thread);
}

void LaunchedProgram::AwaitWindow() const {
    constexpr DWORD kStep = 100;
    for (DWORD waited = 0; waited < kPatience && WindowsOf(m_processId).empty(); waited += kStep) {
        if (EndsWithin(kStep)) return;
    }
}

// Whether the agent could do it.
bool LaunchedProgram::Ask(HANDLE wanted) const {
    ResetEvent(m_done);
    ResetEvent(m_failed);
    SetEvent(wanted);
    HANDLE ends[] = {m_done, m_failed, m_process};
    DWORD end = WaitForMultipleObjects(3, ends, FALSE, kPatience);
    if (end > WAIT_OBJECT_0 + 1)
        throw BadInput(m_name + (EndsWithin(0) ? " has ended" : " does not answer"));
    return end == WAIT_OBJECT_0;
}

void LaunchedProgram::Settle() {
    try {
        Ask(m_settleWanted);
    } catch (const BadInput&) {
        // A program may end by what it was asked for; one that hangs is found by what comes next.
    }
}

void LaunchedProgram::SendCommand(unsigned command) {
    constexpr DWORD kStep = 20;
    constexpr DWORD kShowPatience = 2000;
    std::vector<HWND> windows = WindowsOf(m_processId);
    if (windows.empty()) throw BadInput(m_name + " has no window to send a command to");
    auto withMenu = std::find_if(windows.begin(), windows.end(),
                                 [](HWND w) { return GetMenu(w) && !GetWindow(w, GW_OWNER); });
    PostMessageW(withMenu == windows.end() ? windows.front() : *withMenu, WM_COMMAND, command, 0);
    Settle();
    // A dialog is shown a little after it has been made, and a command need not open one.
    const std::set<HWND> before(windows.begin(), windows.end());
    for (DWORD waited = 0; waited < kShowPatience && !EndsWithin(kStep); waited += kStep) {
        windows = WindowsOf(m_processId);
        if (std::set<HWND>(windows.begin(), windows.end()) != before) break;
    }
    Settle();
}

void LaunchedProgram::Dump() {
    if (EndsWithin(0)) throw BadInput(m_name + " ended before its windows could be read");
    if (!Ask(m_dumpWanted)) throw BadInput("the program cannot write the dump");
}

bool LaunchedProgram::HasWholeRecord() const {
    return WaitForSingleObject(m_recordFailed, 0) != WAIT_OBJECT_0;
}

void LaunchedProgram::Close() {
    std::set<HWND> asked;
    for (bool asks = true; asks;) {
        asks = false;
        for (HWND window : WindowsOf(m_processId)) {
            // A window that is disabled waits for the dialog it owns.
            if (!IsWindowEnabled(window) || !asked.insert(window).second) continue;
            PostMessageW(window, WM_CLOSE, 0, 0);
            asks = true;
        }
        if (asks) Settle();
    }
    // A window that stays does not want to go.
    if (WindowsOf(m_processId).empty() && EndsWithin(kClosePatience)) return;
    TerminateProcess(m_process, 0);
    WaitForSingleObject(m_process, kPatience);
}

}  // namespace qx
