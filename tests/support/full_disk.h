// Drive T: of the tests that tests/file/local/full_disk starts: a file system of about a megabyte.
#ifndef QXCORE_TESTS_SUPPORT_FULL_DISK_H
#define QXCORE_TESTS_SUPPORT_FULL_DISK_H

#include <qxcore/platform.h>

#include <string>

// Takes the whole disk but for so many bytes.
inline void FillDisk(unsigned left) {
    HANDLE filler = CreateFileA("T:\\filler", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    std::string page(4096, 'f');
    DWORD size = 0, written = 0;
    while (WriteFile(filler, page.data(), 4096, &written, nullptr) && written == 4096)
        size += written;
    SetFilePointer(filler, LONG(size - left), nullptr, FILE_BEGIN);
    SetEndOfFile(filler);
    CloseHandle(filler);
}

inline void FreeDisk() {
    DeleteFileA("T:\\filler");
}

#endif
