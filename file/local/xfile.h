// CXFile: a local file, read and written through a sliding view of its mapping.
#ifndef QXCORE_FILE_LOCAL_XFILE_H
#define QXCORE_FILE_LOCAL_XFILE_H

#include "file/local/file_lock.h"
#include "file/platform/handles.h"
#include "file/shapes/window_file.h"

namespace qx {

// The view is one chunk long, two allocation granularities, and starts at a multiple of it. An
// output file grows on disk by whole chunks; the last release cuts it to its length.
class CXFile final : public CWindowFile<CXFile, IXFile> {
public:
    // A null path makes a temporary file. Raises CXFileException.
    CXFile(const char* path, int flags);

    // A file open for input takes nothing: code 12.
    void Write(const void* bytes, unsigned count) override;
    int Flush() override;

    void MoveWindow();
    unsigned End();

private:
    CXFile(const CXString& path, int flags);
    ~CXFile() override = default;

    void OpenHandle(int flags);
    void MapFirst(int flags);
    void MapWindow(uint64_t offset);
    bool CreateMapping(uint64_t length);
    bool Unmap();
    bool Close();

    LiftedLock m_ownLock;  // first, so that the lock comes back when the handles are gone
    KernelHandle m_file;
    KernelHandle m_mapping;
    MappedView m_view;
    uint64_t m_chunk;
};

}  // namespace qx

#endif
