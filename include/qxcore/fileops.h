// Operations on paths, and locks that keep other programs from writing a document that is in use
// here.
//
// Where a function sorts paths, memory files ("fmem::...") come first, then URLs, and the rest is
// local. With a URL a function meets the server (see <qxcore/url.h>), and waits for it without a
// time-out of its own; Fio_DeleteFile then does not tell whether the server did it.
//
// Errors: failures are CXFileException with the path as name and the operation named at the
// function. Questions answer 1 or 0 and never raise. Threading: the lock functions belong to one
// thread of the program.
#ifndef QXCORE_FILEOPS_H
#define QXCORE_FILEOPS_H

#include <qxcore/export.h>

class CXString;

struct FioFileInfo {
    unsigned size;  // the low 32 bits
    // Time of the last write, UTC.
    unsigned second;
    unsigned minute;
    unsigned hour;
    unsigned day;        // of the month
    unsigned dayOfWeek;  // 0 is Sunday
    unsigned month;      // 1 is January
    unsigned year;
};

// 1 when Fio_GetFileInfo has an answer. Never throws; a memory file always exists, and a server
// that cannot be reached has no files.
QXCORE_API int Fio_IsFileExist(const char* path);
// A memory file gives its size only; the other fields stay as they are. QXOP_GET_INFORMATION.
QXCORE_API void Fio_GetFileInfo(const char* path, FioFileInfo* info);
// Local paths only. A non-zero failIfExists refuses to overwrite. QXOP_COPY, with the source's
// name.
QXCORE_API void Fio_CopyFile(const char* from, const char* to, int failIfExists);
// Nothing for a memory file. QXOP_DELETE_FILE.
QXCORE_API void Fio_DeleteFile(const char* path);
// QXOP_RENAME, with the old name.
QXCORE_API void Fio_RenameFile(const char* from, const char* to);
// Makes every missing level; a path that exists, or is null or empty, is done.
// QXOP_CREATE_DIRECTORY. Behind a URL one level only.
QXCORE_API void Fio_CreateDirectory(const char* path);
// An empty directory only. QXOP_DELETE_DIRECTORY.
QXCORE_API void Fio_DeleteDirectory(const char* path);
QXCORE_API void Fio_GetCurrentDirectory(char* buffer, unsigned size);
// QXOP_SET_CURRENT_DIRECTORY.
QXCORE_API void Fio_SetCurrentDirectory(const char* path);

// 0 when the read-only attribute is set, otherwise 1, also for a missing file; whether somebody
// holds the file is not looked at.
QXCORE_API int Fio_IsWritableFile(const char* path);
// The same; `holder` stays as it is.
QXCORE_API int Fio_IsWritableFile(const char* path, CXString& holder);
// The same question about a directory, by its attribute alone.
QXCORE_API int Fio_IsWritableDir(const char* path);

// The old value. A zero keeps Fio_LockFile from memory files only: a local file is locked whatever
// this says.
QXCORE_API int Fio_EnableLocking(int enable);
// Keeps other programs from opening the file for writing, until as many Fio_UnlockFile. When
// somebody else has the file open nothing is locked and nothing is raised: Fio_LockCount then
// answers 0. The table compares paths as text, without regard to case: two spellings of one file
// are two locks.
QXCORE_API void Fio_LockFile(const char* path);
QXCORE_API void Fio_UnlockFile(const char* path);
QXCORE_API int Fio_LockCount(const char* path);
// Lifts this program's own lock for a moment, so that it can open the file itself, or puts it back.
// Not counted.
QXCORE_API void Fio_ChangeNELock(const char* path, int lift);

// An empty new file in the system's temporary directory. The text is overwritten by the next call.
QXCORE_API const char* Fio_GetTempFileName();
// Whether the platform takes the path for a URL.
QXCORE_API int Fio_PathIsURL(const char* path);

#endif
