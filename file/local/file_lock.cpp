#include "file/local/file_lock.h"

#include "file/platform/file_error.h"
#include "file/platform/handles.h"

#include <qxcore/file.h>
#include <qxcore/listitem.h>
#include <qxcore/string.h>

#include <cstring>

using qx::KernelHandle;

namespace {

struct LockRecord : QX_LISTITEM {
    explicit LockRecord(const char* path) : path(path) {}

    KernelHandle hold;            // null while lifted, and while there is no file
    KernelHandle secondHold;      // reserved
    unsigned exclusiveCount = 0;  // reserved
    unsigned count = 1;
    CXString path;
};

constinit COList g_records;
constinit int g_enabled = 1;

LockRecord* FindRecord(const char* path) {
    if (!path) return nullptr;
    QX_LISTITEM* item = g_records.head;
    for (unsigned left = g_records.count; left; --left, item = item->next) {
        auto record = static_cast<LockRecord*>(item);
        if (_stricmp(record->path, path) == 0) return record;
    }
    return nullptr;
}

KernelHandle OpenForLock(const char* path, DWORD access, DWORD sharing) {
    constexpr DWORD kAttributes =
        FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE | FILE_FLAG_NO_BUFFERING;
    return KernelHandle(
        CreateFileA(path, access, sharing, nullptr, OPEN_EXISTING, kAttributes, nullptr));
}

// False when somebody else has the file open. A file that does not exist is locked when the lock is
// next taken.
bool TakeDiskLock(LockRecord& record) {
    if (record.hold || !Fio_IsFileExist(record.path)) return true;
    if (!OpenForLock(record.path, GENERIC_READ | GENERIC_WRITE, 0)) return false;
    record.hold = OpenForLock(record.path, GENERIC_READ, FILE_SHARE_READ);
    return bool(record.hold);
}

void ReleaseDiskLock(LockRecord& record) {
    if (record.exclusiveCount) qx::RaiseFileError(record.path, QXOP_UNLOCK);
    record.hold.Close();
    record.secondHold.Close();
}

}  // namespace

int Fio_EnableLocking(int enable) {
    return std::exchange(g_enabled, enable);
}

void Fio_LockFile(const char* path) {
    // Only both together keep the lock away: the switch has no effect on a local file.
    if (!g_enabled && Fio_IsMemFile(path)) return;
    if (!path) return;
    if (LockRecord* record = FindRecord(path)) {
        ++record->count;
        return;
    }
    auto record = new LockRecord(path);
    if (TakeDiskLock(*record)) {
        g_records.Append(record);
    } else {
        delete record;
    }
}

void Fio_UnlockFile(const char* path) {
    LockRecord* record = FindRecord(path);
    if (!record || --record->count) return;
    ReleaseDiskLock(*record);
    g_records.Unlink(record);
    delete record;
}

int Fio_LockCount(const char* path) {
    LockRecord* record = FindRecord(path);
    return record ? int(record->count) : 0;
}

void Fio_ChangeNELock(const char* path, int lift) {
    LockRecord* record = FindRecord(path);
    if (!record) return;
    if (lift) {
        ReleaseDiskLock(*record);
    } else {
        TakeDiskLock(*record);
    }
}
