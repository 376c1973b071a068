#include "translate/places/loader_entry.h"

#include "file/platform/guarded_copy.h"

#include <winternl.h>

namespace qx {

namespace {

using Entry = LDR_DATA_TABLE_ENTRY;

template <class T>
bool Read(const T* from, T* value) {
    return GuardedCopy(value, from, sizeof *value);
}

const Entry* EntryAt(const LIST_ENTRY* links) {
    return CONTAINING_RECORD(links, Entry, InMemoryOrderLinks);
}

// An entry that was taken out of the list is not what its neighbours lead to.
bool IsInList(const Entry* entry) {
    LIST_ENTRY *before, *next;
    return Read(&entry->InMemoryOrderLinks.Blink, &before) && Read(&before->Flink, &next) &&
           next == &entry->InMemoryOrderLinks;
}

bool EndsWithFile(const UNICODE_STRING& path, const char* name, size_t length) {
    constexpr size_t kLongestName = 64;
    constexpr size_t kLongestPath = 260;  // a longer one is known by its beginning
    wchar_t end[1 + kLongestName];
    size_t characters = path.Length / sizeof *end;
    if (length > kLongestName || characters <= length || characters >= kLongestPath) return false;
    const wchar_t* from = path.Buffer + (characters - length - 1);
    if (!GuardedCopy(end, from, (length + 1) * sizeof *end) || !IsSeparator(end[0])) return false;
    for (size_t i = 0; i < length; ++i) {
        if (end[i + 1] != static_cast<unsigned char>(name[i]) || end[i + 1] > 0x7F) return false;
    }
    return true;
}

const PEB_LDR_DATA* FindLoader() {
    FARPROC found = GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetCurrentPeb");
    auto process = reinterpret_cast<const PEB*(WINAPI*)()>(reinterpret_cast<void*>(found));
    return process ? process()->Ldr : nullptr;
}

const PEB_LDR_DATA* Loader() {
    static const PEB_LDR_DATA* const loader = FindLoader();
    return loader;
}

}  // namespace

bool IsEntryOf(LoaderEntry address, HMODULE module, const char* name, size_t length) {
    auto entry = static_cast<const Entry*>(address);
    PVOID base;
    UNICODE_STRING path;
    return IsInList(entry) && Read(&entry->DllBase, &base) && base == module &&
           Read(&entry->FullDllName, &path) && EndsWithFile(path, name, length);
}

LoaderEntry FindEntryOf(HMODULE module, const char* name, size_t length) {
    constexpr int kMost = 4096;  // of a list that changes while it is walked
    if (!Loader()) return nullptr;
    const LIST_ENTRY* head = &Loader()->InMemoryOrderModuleList;
    LIST_ENTRY* links = nullptr;
    if (!Read(&head->Flink, &links)) return nullptr;
    for (int i = 0; i < kMost && links != head; ++i) {
        const Entry* entry = EntryAt(links);
        PVOID base;
        if (!Read(&entry->DllBase, &base)) return nullptr;
        if (base == module) return IsEntryOf(entry, module, name, length) ? entry : nullptr;
        if (!Read(&links->Flink, &links)) return nullptr;
    }
    return nullptr;
}

}  // namespace qx
