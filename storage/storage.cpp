#include <qxcore/storage.h>

#include "file/platform/temp_name.h"
#include "storage/compound/compound_check.h"
#include "storage/compound/ole_failure.h"
#include "storage/compound/ole_name.h"
#include "storage/compound/ole_storage.h"

#include <qxcore/exception.h>
#include <qxcore/fileops.h>

#include <objbase.h>

#include <new>

namespace qx {

namespace {

constexpr SIZE_T kMemoryStorageSize = 100000;  // spares early reallocations of the block

void Check(HRESULT status, const char* path) {
    if (FAILED(status)) throw CXFileException(CodeOfStatus(status), path, QXOP_OPEN);
}

HRESULT CreateInMemory(DWORD mode, IStorage** out) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, kMemoryStorageSize);
    Reference<ILockBytes> bytes;
    HRESULT status = CreateILockBytesOnHGlobal(block, TRUE, bytes.Receive());
    if (FAILED(status)) {
        GlobalFree(block);
        return status;
    }
    return StgCreateDocfileOnILockBytes(bytes.Get(), mode, 0, out);
}

// Failures tell of the path as the caller gave it.

IXStorage* NewMemoryStorage(int flags, DWORD mode) {
    Reference<IStorage> ole;
    Check(CreateInMemory(mode, ole.Receive()), nullptr);
    return new (std::nothrow) COleStorage(ole.Get(), flags, nullptr, "");
}

IXStorage* NewFileStorage(const char* file, int flags, DWORD mode, const char* given) {
    static constinit OleName wide;
    Reference<IStorage> ole;
    Check(StgCreateDocfile(wide.Set(file), mode, 0, ole.Receive()), given);
    return new (std::nothrow) COleStorage(ole.Get(), flags, nullptr, file);
}

IXStorage* NewTemporaryStorage(int flags, DWORD mode, const char* given) {
    TemporaryFile file;
    IXStorage* storage = NewFileStorage(file.Path(), flags, mode, given);
    if (storage) file.Keep();
    return storage;
}

}  // namespace

}  // namespace qx

using namespace qx;

IXStorage* new_Storage(const char* path, int flags) {
    DWORD mode = OleModeOf(flags, OleRole::Root) | STGM_CREATE;
    if (flags & QXSTG_TEMPORARY) return NewTemporaryStorage(flags, mode, path);
    if (!path) return NewMemoryStorage(flags, mode);
    Fio_CreateDirectory(CXString(path).FilePath());
    return NewFileStorage(path, flags, mode, path);
}

IXStorage* open_Storage(const char* path, int readOnly) {
    static constinit OleName wide;
    if (Fio_PathIsURL(path)) return open_UrlStorage(path, nullptr, readOnly);
    if (path && !IsSoundCompoundFile(path)) Check(STG_E_DOCFILECORRUPT, path);
    unsigned flags = readOnly ? QXSTG_READ_ONLY : QXSTG_TRANSACTED;
    Reference<IStorage> ole;
    Check(StgOpenStorage(wide.Set(path), nullptr, OleModeOf(flags, OleRole::Root), nullptr, 0,
                         ole.Receive()),
          path);
    return new (std::nothrow) COleStorage(ole.Get(), flags, nullptr, path);
}

IXStorage* new_StorageByOleStorage(void* oleStorage) {
    auto ole = static_cast<IStorage*>(oleStorage);
    STATSTG facts = {};
    Check(ole->Stat(&facts, STATFLAG_NONAME), nullptr);
    unsigned flags = 0;
    if (facts.grfMode & STGM_TRANSACTED) flags |= QXSTG_TRANSACTED;
    if (!(facts.grfMode & (STGM_WRITE | STGM_READWRITE))) flags |= QXSTG_READ_ONLY;
    return new (std::nothrow) COleStorage(ole, flags, nullptr, "");
}

void* Storage_GetOLEStorage(IXStorage* storage) {
    return static_cast<COleStorage*>(storage)->NewOleReference();
}
