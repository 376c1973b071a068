// CXOutFile: a local file that appears whole on Commit, written to a temporary file in the target's
// directory.
#ifndef QXCORE_FILE_LOCAL_XOUTFILE_H
#define QXCORE_FILE_LOCAL_XOUTFILE_H

#include "file/shapes/forwarding_file.h"

namespace qx {

class CXOutFile final : public CForwardingFile<IXOutFile, IXFile> {
public:
    // The temporary file exists, and is the object's own once the constructor is done.
    CXOutFile(const char* target, const char* temp, int flags);

    void Commit() override;

private:
    ~CXOutFile() override;
    void OpenOverTarget(int flags);
    void OpenInner(int flags);
    bool UnlockTarget();

    CXString m_temp;
    bool m_committed = false;
};

}  // namespace qx

#endif
