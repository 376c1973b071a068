#include "file/xoutfile.h"

#include "file/file_lock.h"

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
    Fio_LockFile(m_path);
    try {
        OpenInner(flags);
        m_inner->Seek(0, keep ? QXSEEK_END : QXSEEK_START);
    } catch (...) {
        ReleaseInner();
        Fio_UnlockFile(m_path);
        throw;
    }
}

void CXOutFile::OpenInner(int flags) {
    m_inner = Fio_Open(m_temp, flags);
    if (!m_inner) throw CXMemException();
}

void CXOutFile::Commit() {
    if (!m_inner) return;
    ReleaseInner();  // a file that cannot be closed whole is abandoned
    m_committed = true;
    LiftedLock lifted(m_path);  // at its end the lock of those who still lock the target holds the new file
    if (Fio_IsFileExist(m_path)) {
        Fio_UnlockFile(m_path);
        Fio_DeleteFile(m_path);
    }
    Fio_RenameFile(m_temp, m_path);
}

// Without Commit: nothing of this may raise, and nothing of what was written is wanted.
CXOutFile::~CXOutFile() {
    if (m_committed) return;
    try {
        ReleaseInner();
    } catch (CXException&) {
    }
    if (Fio_IsFileExist(m_path)) Fio_UnlockFile(m_path);
    DeleteFileA(m_temp);
}
