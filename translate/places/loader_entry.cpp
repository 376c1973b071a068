#include "translate/places/loader_entry.h"

#include "file/platform/guarded_copy.h"

#include <winternl.h>

#include <cstddef>
#include <cstdint>

namespace qx {

namespace {

// Addresses are numbers until something is read there: they may be anything.
constexpr uintptr_t kLinks = offsetof(LDR_DATA_TABLE_ENTRY, InMemoryOrderLinks);
constexpr uintptr_t kBase = offsetof(LDR_DATA_TABLE_ENTRY, DllBase);
constexpr uintptr_t kPath = offsetof(LDR_DATA_TABLE_ENTRY, FullDllName);
constexpr uintptr_t kLoader = 0x18;  // in a 64-bit PEB; headers disagree on the field's name
constexpr uintptr_t kNext = offsetof(LIST_ENTRY, Flink);
constexpr uintptr_t kBefore = offsetof(LIST_ENTRY, Blink);

template <class T>
bool Read(uintptr_t from, T* value) {
    return GuardedCopy(value, reinterpret_cast<const void*>(from), sizeof *value);
}

// An entry that was taken out of the list is not what its neighbours lead to.
bool IsInList(uintptr_t entry) {
    uintptr_t before, next;
    return Read(entry + kLinks + kBefore, &before) && Read(before + kNext, &next) &&
           next == entry + kLinks;
}

bool EndsWithFile(const UNICODE_STRING& path, const char* name, size_t length) {
    constexpr size_t kLongestName = 64;
    constexpr size_t kLongestPath = 260;  // a longer one is known by its beginning
    wchar_t end[1 + kLongestName];
    size_t characters = path.Length / sizeof *end;
    if (length > kLongestName || characters <= length || characters >= kLongestPath) return false;
    auto from = reinterpret_cast<uintptr_t>(path.Buffer) + (characters - length - 1) * sizeof *end;
    if (!GuardedCopy(end, reinterpret_cast<const void*>(from), (length + 1) * sizeof *end) ||
        !IsSeparator(end[0]))
        return false;
    for (size_t i = 0; i < length; ++i) {
        if (end[i + 1] != static_cast<unsigned char>(name[i]) || end[i + 1] > 0x7F) return false;
    }
    return true;
}

const PEB_LDR_DATA* FindLoader() {
    FARPROC found = GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetCurrentPeb");
    auto process = reinterpret_cast<const PEB*(WINAPI*)()>(reinterpret_cast<void*>(found));
    const PEB_LDR_DATA* loader = nullptr;
    if (process) Read(reinterpret_cast<uintptr_t>(process()) + kLoader, &loader);
    return loader;
}

const PEB_LDR_DATA* Loader() {
    static const PEB_LDR_DATA* const loader = FindLoader();
    return loader;
}

}  // namespace

bool IsEntryOf(LoaderEntry address, HMODULE module, const char* name, size_t length) {
    auto entry = reinterpret_cast<uintptr_t>(address);
    HMODULE base;
    UNICODE_STRING path;
    return IsInList(entry) && Read(entry + kBase, &base) && base == module &&
           Read(entry + kPath, &path) && EndsWithFile(path, name, length);
}

LoaderEntry FindEntryOf(HMODULE module, const char* name, size_t length) {
    constexpr int kMost = 4096;  // of a list that changes while it is walked
    if (!Loader()) return nullptr;
    auto head = reinterpret_cast<uintptr_t>(&Loader()->InMemoryOrderModuleList);
    uintptr_t links = head;
    for (int i = 0; i < kMost && Read(links + kNext, &links) && links != head; ++i) {
        uintptr_t entry = links - kLinks;
        HMODULE base;
        if (!Read(entry + kBase, &base)) return nullptr;
        if (base != module) continue;
        auto found = reinterpret_cast<LoaderEntry>(entry);
        return IsEntryOf(found, module, name, length) ? found : nullptr;
    }
    return nullptr;
}

}  // namespace qx
