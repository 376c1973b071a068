#include "translate/interception/import_table.h"

#include "translate/interception/image_memory.h"

#include <algorithm>
#include <cassert>

namespace qx {

namespace {

constexpr WORD kOptionalHeader64 = 240;  // its size tells the 64-bit form
constexpr uintptr_t kPage = 4096;

int WINAPI NothingToCall() {
    return 0;
}

void* RealAddress(const char* dll, const char* function) {
    HMODULE library = GetModuleHandleA(dll);
    return library ? reinterpret_cast<void*>(GetProcAddress(library, function)) : nullptr;
}

// Keeps the page of the latest slot writable until a slot of another page comes, since changing a
// page's protection costs far more than writing to it.
class SlotWriter {
public:
    SlotWriter() = default;
    ~SlotWriter() { Protect(); }
    SlotWriter(const SlotWriter&) = delete;
    SlotWriter& operator=(const SlotWriter&) = delete;

    bool Write(void* slot, void* value) {
        if (!MakeWritable(reinterpret_cast<uintptr_t>(slot))) return false;
        memcpy(slot, &value, sizeof value);
        FlushInstructionCache(GetCurrentProcess(), slot, sizeof value);
        return true;
    }

private:
    bool MakeWritable(uintptr_t slot) {
        if (slot >= m_first && slot + sizeof(void*) <= m_last) return true;
        Protect();
        if (!VirtualProtect(reinterpret_cast<void*>(slot), sizeof(void*), PAGE_READWRITE, &m_old))
            return false;
        m_first = slot / kPage * kPage;
        m_last = m_first + kPage;
        // A slot across two pages stands alone: the second page's protection is not the first one's
        // to restore.
        if (slot + sizeof(void*) > m_last) m_first = slot, m_last = slot + sizeof(void*);
        return true;
    }
    void Protect() {
        if (m_first)
            VirtualProtect(reinterpret_cast<void*>(m_first), m_last - m_first, m_old, &m_old);
        m_first = m_last = 0;
    }

    uintptr_t m_first = 0;
    uintptr_t m_last = 0;
    DWORD m_old = 0;
};

// Where the import directory begins, from the image's base; false when the image is none.
bool FindImportDirectory(ImageMemory& image, int64_t* directory) {
    LONG newHeader;
    DWORD signature;
    WORD optionalHeader;
    DWORD address;
    if (!image.Read(offsetof(IMAGE_DOS_HEADER, e_lfanew), &newHeader)) return false;
    if (!image.Read(newHeader, &signature) || signature != IMAGE_NT_SIGNATURE) return false;
    int64_t fileHeader = int64_t(newHeader) + offsetof(IMAGE_NT_HEADERS64, FileHeader);
    if (!image.Read(fileHeader + offsetof(IMAGE_FILE_HEADER, SizeOfOptionalHeader),
                    &optionalHeader))
        return false;
    if (optionalHeader != kOptionalHeader64) return false;
    if (!image.Read(
            newHeader + int64_t(offsetof(IMAGE_NT_HEADERS64, OptionalHeader.DataDirectory[1])),
            &address)) {
        return false;
    }
    *directory = address;
    return *directory != fileHeader;
}

// Calls visit(slot offset, value) for the slots of all descriptors, whatever library they name.
template <class Visit>
void ForEachSlot(ImageMemory& image, int64_t directory, Visit visit) {
    if (directory == 0) return;  // no imports
    for (int64_t descriptor = directory;; descriptor += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        DWORD name;
        DWORD slots;
        if (!image.Read(descriptor + offsetof(IMAGE_IMPORT_DESCRIPTOR, Name), &name) || name == 0)
            return;
        if (!image.Read(descriptor + offsetof(IMAGE_IMPORT_DESCRIPTOR, FirstThunk), &slots)) return;
        void* value;
        for (int64_t slot = slots; image.Read(slot, &value) && value; slot += sizeof value)
            visit(slot, value);
    }
}

}  // namespace

void ExchangeImports(void* module, ImportWay way, ImportExchange* exchanges, size_t count) {
    assert(module);
    ImageMemory image(module);
    int64_t directory;
    bool isImage = FindImportDirectory(image, &directory);
    for (size_t i = 0; i < count; ++i) {
        exchanges[i].result =
            isImage ? RealAddress(exchanges[i].dll, exchanges[i].function) : nullptr;
    }
    if (!isImage) return;
    SlotWriter writer;
    ForEachSlot(image, directory, [&](int64_t slot, void* value) {
        for (size_t i = 0; i < count; ++i) {
            ImportExchange& e = exchanges[i];
            void* from = way == ImportWay::Patch ? e.result : e.replacement;
            if (value != from || !e.result) continue;
            if (writer.Write(image.At(slot), way == ImportWay::Patch ? e.replacement : e.result)) {
                e.slot = image.At(slot);
            } else {
                e.result = nullptr;
            }
            return;
        }
    });
}

void* PatchImportTable(void* module, const char* dll, const char* function, void* replacement) {
    if (!module) return reinterpret_cast<void*>(&NothingToCall);
    ImportExchange exchange = {dll, function, replacement, nullptr};
    ExchangeImports(module, ImportWay::Patch, &exchange, 1);
    return exchange.result;
}

}  // namespace qx
