// Documents: named streams and sub-storages in a compound file.
//
//     qx::Reference<IXStorage> file(new_Storage("C:\\plans\\house.plan", 0));
//     qx::Reference<IXStorage> floor(file->CreateStorage("ground floor", 0));
//     qx::Reference<IXStream> walls(floor->CreateStream("walls"));
//     walls->WriteLong(4);
//
// The last release of a storage commits what was written, and a sub-storage holds its parent, so
// the file is whole when everything that came of it is released.
//
// Names are narrow text in the process's code page, of which the platform gets the first 512
// characters (and takes 31 for an element). A name that is empty or holds \ / : or ! is refused
// with STG_E_INVALIDNAME. Bytes of a file that come from elsewhere are no danger: a damaged file is
// refused when it is opened.
// Errors: CXFileException, or null where an operation says so.
// Threading: every operation shares static buffers, so all storages of the process serve one thread
// at a time.
#ifndef QXCORE_STORAGE_H
#define QXCORE_STORAGE_H

#include <qxcore/enum.h>
#include <qxcore/platform.h>
#include <qxcore/stream.h>

struct IXStorage : IQXUnknown {
    // A new sub-storage, in place of an element of that name; `unused` has no effect. Throws
    // CXFileException.
    virtual IXStorage* CreateStorage(const char* name, int unused) = 0;
    // Throws CXFileException; code 6 when there is none.
    virtual IXStorage* OpenStorage(const char* name) = 0;
    // Throws CXFileException, operation 4, without a name.
    virtual HRESULT DeleteStorage(const char* name) = 0;
    // The parent with a reference for the caller; null at a root.
    virtual IXStorage* GetParent() = 0;
    // A snapshot of the sub-storages' names, for the caller to release; it outlives the storage.
    virtual CTEnum<const char*>* EnumStorages() = 0;
    // A new stream, in place of one of that name. Null on failure, unlike CreateStorage.
    virtual IXStream* CreateStream(const char* name) = 0;
    // Null on failure, unlike OpenStorage.
    virtual IXStream* OpenStream(const char* name) = 0;
    virtual HRESULT DeleteStream(const char* name) = 0;
    // Does nothing on a storage opened for reading only.
    virtual void Commit() = 0;
    virtual CTEnum<const char*>* EnumStreams() = 0;
    // The root's file, also on a sub-storage; empty for a storage without a path. Lives as long as
    // the storage.
    virtual const char* GetPath() = 0;

protected:
    ~IXStorage() = default;
};
QX_DECLARE_TYPEID(IXStorage, ".?AUIXStorage@@");

// A storage over OLE: what new_Storage, open_Storage and new_StorageByOleStorage give, and what its
// sub-storages are. Its further operations stand behind those of the interface and the template; a
// host that knows where its storage comes from reaches them by a static_cast from IXStorage*.
// Nothing tests the class.
//
// The last release commits. Revert before it is the only way out of a transaction.
// Asked for IQXProperty, a storage answers a new object over its property sets each time.
class CStorage : public CQXUnknownImpl<IXStorage> {
public:
    // Drops what was written since the last commit. Does nothing on a storage that is not
    // transacted.
    virtual void Revert() = 0;
    // Always answers 0.
    virtual int Reserved(void*, void*, void*, void*) { return 0; }
};

// Mode bits of new_Storage.
enum : int {
    QXSTG_READ_ONLY = 1,
    QXSTG_TRANSACTED = 2,
    QXSTG_TEMPORARY = 4,         // a new file in the temporary directory; the path is ignored
    QXSTG_DELETE_ON_RELEASE = 8  // the file goes with the root's last release
};

// A new storage: in a file at path, whose missing directories are made; in memory when path is
// null; in a temporary file with bit 2. Throws CXFileException, operation 0, with the path.
QXCORE_API IXStorage* new_Storage(const char* path, int flags);
// An existing file, for reading, or transacted for reading and writing. Throws CXFileException,
// operation 0, with the path: code 6 for a missing file, code 8 for one that somebody else has open
// or that this program has locked (Fio_ChangeNELock lifts the lock for as long as the storage is
// open), code 15 for one that is no compound file or a damaged one, whose tables are looked over
// first. A URL goes to open_UrlStorage.
QXCORE_API IXStorage* open_Storage(const char* path, int readOnly);
// The compound file behind a URL, by way of a local copy: the whole file is brought by FTP into the
// file at localPath, which is overwritten, or into a new temporary file when that is null or empty,
// and that is opened like open_Storage does. Changes reach the local copy and never the server.
//
// The storage forwards to the one over the copy: GetPath answers the URL, what is handed out are
// the elements of the copy, and QueryInterface too is answered by the storage over the copy, with
// itself for IXStorage and with the copy's properties for IQXProperty. The last release tries to
// delete the copy, also one at a given path, but the copy is still open then: it stays behind, for
// the program to delete.
//
// Null only when the heap gives no memory. Throws CXFileException, operation 0: code 13 without a
// name when the file cannot be brought, for whatever reason, and otherwise what open_Storage
// throws, with the local path. The call waits for the network without a time-out of its own.
QXCORE_API IXStorage* open_UrlStorage(const char* url, const char* localPath, int readOnly);
// Takes a reference on an IStorage. The path stays empty.
QXCORE_API IXStorage* new_StorageByOleStorage(void* oleStorage);

// The IStorage of a CStorage, with a reference for the caller. Nothing tests the class.
QXCORE_API void* Storage_GetOLEStorage(IXStorage* storage);

#endif
