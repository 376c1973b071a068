#include "file/memory/xmemfile.h"

#include <qxcore/string_enum.h>
#include <qxcore/fileops.h>

#include <cstdlib>

namespace qx {

namespace {

constexpr char kPrefix[] = "fmem::";
constexpr size_t kPrefixLength = sizeof kPrefix - 1;

// The two numbers of a path; a missing one is 0.
struct MemoryRange {
    explicit MemoryRange(const char* path) {
        _CCharSeparatedStringsEnum<char> texts(",.", path + kPrefixLength);
        const char* numbers[2] = {};
        texts.Next(2, numbers, &count);
        if (count > 0) address = atoi(numbers[0]);
        if (count > 1) size = atoi(numbers[1]);
    }

    unsigned count = 0;
    int address = 0;
    int size = 0;
};

bool IsMemoryPath(const char* path) {
    return path && _strnicmp(path, kPrefix, kPrefixLength) == 0;
}

void GetMemoryInfo(const char* path, FioFileInfo* info) {
    MemoryRange range(path);
    if (range.count > 1) info->size = unsigned(range.size);
}

}  // namespace

constinit const FileScheme g_memoryScheme = {
    .serves = IsMemoryPath,
    .open = [](const char* path, int) -> IXFile* { return new CXMemFile(path); },
    .openOut = [](const char* path, int) -> IXOutFile* { return new CXMemFile(path); },
    .getFileInfo = GetMemoryInfo,
    .deleteFile = [](const char*) {},
    .createDirectory = [](const char*) {},
    .isWritableFile = [](const char*) { return 1; },
};

CXMemFile::CXMemFile(const char* path) : CWindowFile(path, QXOP_READ) {
    MemoryRange range(path);
    auto size = uint64_t(int64_t(range.size));
    SetWindow(uintptr_t(intptr_t(range.address)), 0, size);
    SetSize(size);
}

// The window is the whole file, so nothing ever lies outside of it.
void CXMemFile::MoveWindow() {
    Raise(QXERR_DEVICE, m_mode);
}

unsigned CXMemFile::End() {
    delete this;
    return 0;
}

}  // namespace qx

int Fio_IsMemFile(const char* path) {
    return qx::IsMemoryPath(path);
}
