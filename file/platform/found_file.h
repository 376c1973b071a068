// What a search finds, on a disk or on a server.
#ifndef QXCORE_FILE_PLATFORM_FOUND_FILE_H
#define QXCORE_FILE_PLATFORM_FOUND_FILE_H

#include <qxcore/fileops.h>
#include <qxcore/platform.h>

namespace qx {

// An empty drive brings up no dialog while the object lives.
class QuietErrors {
public:
    QuietErrors() : m_saved(SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX)) {}
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors() { SetErrorMode(m_saved); }

private:
    UINT m_saved;
};

inline FioFileInfo InfoOf(const WIN32_FIND_DATAA& found) {
    SYSTEMTIME time = {};
    FileTimeToSystemTime(&found.ftLastWriteTime, &time);
    return {.size = found.nFileSizeLow,
            .second = time.wSecond,
            .minute = time.wMinute,
            .hour = time.wHour,
            .day = time.wDay,
            .dayOfWeek = time.wDayOfWeek,
            .month = time.wMonth,
            .year = time.wYear};
}

}  // namespace qx

#endif
