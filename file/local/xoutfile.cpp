#include "file/local/xoutfile.h"

#include "file/local/file_lock.h"

namespace qx {

CXOutFile::CXOutFile(const char* target, const char* temp, int flags)
    : CForwardingFile(target), m_temp(temp) {
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
    Fio_LockFile(m_path);  // not locked where somebody else has it open; it is replaced as far as
                           // that lets it
    try {
        OpenInner(flags);
        m_inner->Seek(0, keep ? QXSEEK_END : QXSEEK_START);
    } catch (...) {
        m_inner = nullptr;
        Fio_UnlockFile(m_path);
        throw;
    }
}

void CXOutFile::OpenInner(int flags) {
    m_inner = Reference<IXFile>(Fio_Open(m_temp, flags));
    if (!m_inner) throw CXMemException();
}

// The lock's record is found by the path, whoever made it: a target that vanished meanwhile keeps
// this object's lock, and one that appeared loses a lock that a host took on it.
bool CXOutFile::UnlockTarget() {
    bool exists = Fio_IsFileExist(m_path);
    if (exists) Fio_UnlockFile(m_path);
    return exists;
}

void CXOutFile::Commit() {
    if (!m_inner) return;
    m_inner.Release();  // a file that cannot be closed whole is abandoned
    m_committed = true;
    LiftedLock lifted(
        m_path);  // at its end the lock of those who still lock the target holds the new file
    if (UnlockTarget()) Fio_DeleteFile(m_path);
    Fio_RenameFile(m_temp, m_path);
}

// Without Commit: nothing of this may raise, and nothing of what was written is wanted.
CXOutFile::~CXOutFile() {
    if (m_committed) return;
    m_inner = nullptr;
    UnlockTarget();
    DeleteFileA(m_temp);
}

}  // namespace qx
