#include "support/import_slot.h"

#include <cstring>

namespace {

template <class T>
T* At(HMODULE module, DWORD offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

}  // namespace

void** FindImportSlot(HMODULE module, const char* function) {
    auto dos = At<IMAGE_DOS_HEADER>(module, 0);
    auto headers = At<IMAGE_NT_HEADERS>(module, dos->e_lfanew);
    DWORD imports =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (!imports) return nullptr;
    for (auto from = At<IMAGE_IMPORT_DESCRIPTOR>(module, imports); from->Name; ++from) {
        auto name = At<IMAGE_THUNK_DATA>(module, from->OriginalFirstThunk);
        auto slot = At<void*>(module, from->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            auto entry =
                At<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(name->u1.AddressOfData));
            if (strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0) return slot;
        }
    }
    return nullptr;
}

void* SetImportSlot(void** slot, void* function) {
    DWORD protection;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    void* old = *slot;
    *slot = function;
    VirtualProtect(slot, sizeof *slot, protection, &protection);
    return old;
}

ReplacedImport::ReplacedImport(const char* function, void* replacement)
    : m_slot(FindImportSlot(GetModuleHandleA("qxcore.dll"), function)) {
    if (m_slot) m_real = SetImportSlot(m_slot, replacement);
}

ReplacedImport::~ReplacedImport() {
    if (m_slot) SetImportSlot(m_slot, m_real);
}
