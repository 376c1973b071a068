#include "file/xoutfile.h"

#include "file/file_lock.h"

#include <utility>

CXOutFile::CXOutFile(const char* target, const char* temp, int flags) : CForwardingFile(target), m_temp(temp) {
    if (!Fio_IsWritableFile(m_path)) throw CXFileException(QXERR_ACCESS_DENIED, m_path, QXOP_OPEN);
    if (Fio_IsFileExist(m_path)) {
        OpenOverTarget(flags);
    } else {
        OpenInner(flags & ~QXFIO_KEEP);
    }
}

void CXOutFile::OpenOverTarget(int flags) {
    bool keep = flags & QXFIO_KEEP;
    if (keep) Fio_CopyFile(m_path, m_temp, 0);
    LockTarget();
    try {
        OpenInner(flags);
        m_inner->Seek(0, keep ? QXSEEK_END : QXSEEK_START);
    } catch (...) {
        ReleaseInner();
        UnlockTarget();
        throw;
    }
}

void CXOutFile::OpenInner(int flags) {
    m_inner = Fio_Open(m_temp, flags);
    if (!m_inner) throw CXMemException();
}

// A target that somebody else has open is not locked, and replaced as far as that lets it.
void CXOutFile::LockTarget() {
    int before = Fio_LockCount(m_path);
    Fio_LockFile(m_path);
    m_locked = Fio_LockCount(m_path) > before;
}

// Also when the target is gone: a lock that nobody counts would stay for good.
void CXOutFile::UnlockTarget() {
    if (std::exchange(m_locked, false)) Fio_UnlockFile(m_path);
}

void CXOutFile::Commit() {
    if (!m_inner) return;
    ReleaseInner();  // a file that cannot be closed whole is abandoned
    m_committed = true;
    LiftedLock lifted(m_path);  // at its end the lock of those who still lock the target holds the new file
    UnlockTarget();
    if (Fio_IsFileExist(m_path)) Fio_DeleteFile(m_path);
    Fio_RenameFile(m_temp, m_path);
}

// Without Commit: nothing of this may raise, and nothing of what was written is wanted.
CXOutFile::~CXOutFile() {
    if (m_committed) return;
    try {
        ReleaseInner();
    } catch (CXException&) {
    }
    UnlockTarget();
    DeleteFileA(m_temp);
}
