#include "tools/qxagent/modules/modules.h"

#include "tools/qxagent/modules/make_up.h"

#include <qxcore/translation.h>

#include <windows.h>

#include <tlhelp32.h>

#include <cwctype>
#include <string>
#include <vector>

namespace qx {

namespace {

std::wstring Lower(std::wstring text) {
    for (wchar_t& c : text) c = static_cast<wchar_t>(towlower(c));
    return text;
}

std::wstring PathOf(HMODULE module) {
    wchar_t path[1024] = L"";
    GetModuleFileNameW(module, path, 1024);
    return Lower(path);
}

std::wstring FolderOf(const std::wstring& path) {
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

std::wstring NameOf(const std::wstring& path) {
    return path.substr(path.find_last_of(L'\\') + 1);
}

// Libraries that load the program's own resources, such as the pages of a property sheet, or show
// their boxes for it. Those that the library patches by itself have to be made up for like the
// program.
bool IsClassLibrary(const std::wstring& name) {
    return name == L"comdlg32.dll" || name == L"comctl32.dll" || name.starts_with(L"mfc") ||
           name == L"cfc42.dll";
}

class Selection {
public:
    void Set(const wchar_t* ordered) {
        for (; *ordered; ordered += wcslen(ordered) + 1) m_ordered.push_back(Lower(ordered));
        m_program = PathOf(nullptr);
        m_folder = FolderOf(m_program);
        wchar_t windows[MAX_PATH] = L"", system[MAX_PATH] = L"";
        GetWindowsDirectoryW(windows, MAX_PATH);
        GetSystemDirectoryW(system, MAX_PATH);
        // A program of the system stands among the system's own libraries.
        std::wstring systemLibrary = PathOf(GetModuleHandleW(L"kernel32.dll"));
        if (m_folder == Lower(windows) + L"\\" || m_folder == Lower(system) + L"\\" ||
            m_folder == FolderOf(systemLibrary))
            m_folder.clear();
    }
    bool Takes(const std::wstring& path) const {
        if (path == m_program) return true;
        std::wstring name = NameOf(path);
        if (name == L"qxcore.dll" || name == L"qxagent.dll") return false;
        if (IsClassLibrary(name)) return true;
        for (const std::wstring& ordered : m_ordered) {
            if (ordered == name) return true;
        }
        return !m_folder.empty() && FolderOf(path) == m_folder;
    }

private:
    std::vector<std::wstring> m_ordered;
    std::wstring m_program;
    std::wstring m_folder;
};

Selection g_selection;

void Take(HMODULE module) {
    if (!g_selection.Takes(PathOf(module))) return;
    MakeUpFor(module);
    Supp_InitResTranslation(module);
}

struct LoadedModule {
    ULONG flags;
    const void* path;
    const void* name;
    void* base;
    ULONG size;
};

// Runs under the loader's lock, when the module's imports are there and none of its code has run.
void CALLBACK OnModule(ULONG reason, const LoadedModule* module, void*) {
    constexpr ULONG kLoaded = 1;
    if (reason == kLoaded) Take(static_cast<HMODULE>(module->base));
}

void WatchLaterModules() {
    using Register =
        LONG(NTAPI*)(ULONG, void(CALLBACK*)(ULONG, const LoadedModule*, void*), void*, void**);
    HMODULE loader = GetModuleHandleW(L"ntdll.dll");
    auto watch = reinterpret_cast<Register>(
        reinterpret_cast<void*>(GetProcAddress(loader, "LdrRegisterDllNotification")));
    static void* cookie;
    if (watch) watch(0, OnModule, nullptr, &cookie);
}

}  // namespace

void StartModules(const wchar_t* ordered) {
    g_selection.Set(ordered);
    WatchLaterModules();
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
    MODULEENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Module32FirstW(snapshot, &entry); more; more = Module32NextW(snapshot, &entry))
        Take(entry.hModule);
    CloseHandle(snapshot);
}

}  // namespace qx
