#include "translate/places/module_name.h"

#include "strings/characters.h"

#include <qxcore/hash.h>

#include <psapi.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qx {

constinit HMODULE g_program = nullptr;

namespace {

constinit char g_programName[260 + 1] = "";
constinit std::optional<unsigned> g_programHash;
constinit bool g_canLearn = false;

constexpr char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Four characters at a time: paths are long beside the names at their ends.
bool IsAscii(const wchar_t* text, size_t length) {
    static_assert(sizeof(wchar_t) == 2);
    uint64_t bits = 0;
    size_t at = 0;
    for (; at + 4 <= length; at += 4) {
        uint64_t four;
        memcpy(&four, text + at, sizeof four);
        bits |= four;
    }
    for (; at < length; ++at) bits |= text[at];
    return (bits & 0xFF80'FF80'FF80'FF80) == 0;
}

}  // namespace

void StartModuleNames() {
    HMODULE program = GetModuleHandleA(nullptr);
    ModuleName name(program);
    if (!name.Text()) return;
    strcpy(g_programName, name.Text());
    g_programHash = name.Hash();
    g_program = program;
    g_canLearn = LearnModule(program, g_programName);
}

const char* ModuleName::Text() {
    if (IsProgram()) return g_programName;
    if (!m_isAsked) Ask();
    return m_text;
}

std::optional<unsigned> ModuleName::Hash() {
    if (IsProgram()) return g_programHash;
    if (!m_isAsked) Ask();
    if (m_found.row) return m_found.row->hash;
    if (!m_text) return std::nullopt;
    return QXHashText(m_text).hash;
}

unsigned ModuleName::Life() {
    if (IsProgram()) return kLifeOfProgram;
    if (!m_isAsked) Ask();
    return m_found.life;
}

// Nearly every intercepted call asks, and nearly every answer is no at the first letter.
bool ModuleName::Is(const char* name) {
    const char* text = Text();
    if (!text) return false;
    while (*text && Lower(*text) == Lower(*name)) ++text, ++name;
    return !*text && !*name;
}

void ModuleName::Ask() {
    m_isAsked = true;
    m_found = FindKnownModule(m_module);
    if (m_found.row) {
        m_text = m_found.row->name;
    } else {
        AskTheSystem();
        if (m_text && g_canLearn) Keep();
    }
}

// The loader spells ASCII names only as the code page does.
void ModuleName::Keep() const {
    auto isAscii = [](char c) { return static_cast<signed char>(c) >= 0; };
    if (std::all_of(m_text, m_text + strlen(m_text), isAscii)) LearnModule(m_module, m_text);
}

// The wide path comes at less than half the cost of the narrow one, and says the same where all of
// it is ASCII.
void ModuleName::AskTheSystem() {
    DWORD lastError = GetLastError();
    wchar_t path[kPathSize];
    DWORD length = GetModuleFileNameW(m_module, path, kPathSize);
    if (length < kPathSize && IsAscii(path, length)) {
        TakeAsciiPath(path, length);
    } else {
        AskForNarrowPath();
    }
    SetLastError(lastError);
}

void ModuleName::TakeAsciiPath(const wchar_t* path, size_t length) {
    size_t first = length;
    while (first && !IsSeparator(path[first - 1])) --first;
    if (!first) return;
    size_t size = length - first;
    for (size_t i = 0; i < size; ++i) m_path[i] = static_cast<char>(path[first + i]);
    m_path[size] = 0;
    m_text = m_path;
}

void ModuleName::AskForNarrowPath() {
    m_path[GetModuleFileNameA(m_module, m_path, kPathSize)] = 0;
    const char* separator = Characters::OfRuntime().FindLastAny(m_path, ":\\/");
    m_text = separator ? separator + 1 : nullptr;
}

LoadedModules::LoadedModules() {
    DWORD bytes = 0;
    m_isWhole = K32EnumProcessModules(GetCurrentProcess(), m_modules, sizeof m_modules, &bytes) &&
                bytes <= sizeof m_modules;
    if (m_isWhole) m_count = bytes / sizeof(HMODULE);
}

HMODULE LoadedModules::Find(const char* name) const {
    return !m_isWhole || MayHold(name) ? GetModuleHandleA(name) : nullptr;
}

// The system takes a name without an extension for a DLL's.
bool LoadedModules::MayHold(const char* name) const {
    size_t length = strlen(name);
    bool isBare = !strchr(name, '.');
    for (DWORD i = 0; i < m_count; ++i) {
        ModuleName module(m_modules[i]);
        const char* text = module.Text();
        // A module whose path is not to be had may be any.
        if (!text) return true;
        if (!_strnicmp(text, name, length) && !_stricmp(text + length, isBare ? ".dll" : ""))
            return true;
    }
    return false;
}

}  // namespace qx
