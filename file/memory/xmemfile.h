// CXMemFile: a caller's block of memory, named by its address and size in the path, as a file to
// read.
#ifndef QXCORE_FILE_MEMORY_XMEMFILE_H
#define QXCORE_FILE_MEMORY_XMEMFILE_H

#include "file/shapes/file_scheme.h"
#include "file/shapes/window_file.h"

namespace qx {

// Paths "fmem::ADDRESS,SIZE": two decimal numbers with any mix of ',' and '.' between them. Both go
// through atoi, so a block above the first 2 GiB of the address space cannot be named.
//
// Everything written is silently lost. The bytes belong to the caller and outlive every file over
// them.
class CXMemFile final : public CWindowFile<CXMemFile, IXOutFile> {
public:
    explicit CXMemFile(const char* path);

    void Write(const void*, unsigned) override {}
    int Flush() override { return 1; }
    void Commit() override {}

    void MoveWindow();
    unsigned End();
};

}  // namespace qx

#endif
