#include "file/platform/temp_name.h"

#include <qxcore/fileops.h>
#include <qxcore/platform.h>

#include <cstring>

namespace qx {

namespace {

constexpr char kPrefix[] = "QXPR";
constexpr size_t kLongestDirectory = MAX_PATH - 14;  // what the platform's call has room for

}  // namespace

bool MakeTempFile(const char* directory, char (&path)[kTempNameSize]) {
    path[0] = 0;
    if (strlen(directory) > kLongestDirectory) {
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return false;
    }
    return GetTempFileNameA(directory, kPrefix, 0, path) != 0;
}

bool MakeSystemTempFile(char (&path)[kTempNameSize]) {
    char directory[kTempNameSize];
    path[0] = 0;
    DWORD length = GetTempPathA(kTempNameSize, directory);
    return length && length < kTempNameSize && MakeTempFile(directory, path);
}

TemporaryFile::~TemporaryFile() {
    if (!m_kept && *m_path) DeleteFileA(m_path);
}

}  // namespace qx

const char* Fio_GetTempFileName() {
    static char path[qx::kTempNameSize];
    qx::MakeSystemTempFile(path);
    return path;
}
