// The table of locked files, and its scope object.
#ifndef QXCORE_FILE_LOCAL_FILE_LOCK_H
#define QXCORE_FILE_LOCAL_FILE_LOCK_H

#include <qxcore/fileops.h>

namespace qx {

// This program's own lock on a file is lifted while the object lives. The text of the path must
// live as long.
class LiftedLock {
public:
    explicit LiftedLock(const char* path) : m_path(path) { Fio_ChangeNELock(m_path, 1); }
    LiftedLock(const LiftedLock&) = delete;
    LiftedLock& operator=(const LiftedLock&) = delete;
    ~LiftedLock() { Fio_ChangeNELock(m_path, 0); }

private:
    const char* m_path;
};

}  // namespace qx

#endif
