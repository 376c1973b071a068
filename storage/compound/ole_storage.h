// The storage over structured storage.
#ifndef QXCORE_STORAGE_COMPOUND_OLE_STORAGE_H
#define QXCORE_STORAGE_COMPOUND_OLE_STORAGE_H

#include <qxcore/platform.h>
#include <qxcore/reference.h>
#include <qxcore/storage.h>
#include <qxcore/string.h>

#include <objidl.h>

namespace qx {

// What an element of a storage is opened for.
enum class OleRole { Root, SubStorage, Stream };

// The platform's mode for the mode bits of a storage.
DWORD OleModeOf(unsigned flags, OleRole role);

class COleStorage final : public CStorage {
public:
    // The parent is null for a root.
    COleStorage(IStorage* ole, unsigned flags, COleStorage* parent, const char* path);
    // Commits: closing without Revert keeps what was written. Parents that nobody else holds close
    // one after the other, however deep storages are nested.
    ~COleStorage() override;

    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override;
    IXStorage* CreateStorage(const char* name, int unused) override;
    IXStorage* OpenStorage(const char* name) override;
    HRESULT DeleteStorage(const char* name) override;
    IXStorage* GetParent() override { return m_parent.Share(); }
    CTEnum<const char*>* EnumStorages() override { return EnumNames(STGTY_STORAGE); }
    IXStream* CreateStream(const char* name) override;
    IXStream* OpenStream(const char* name) override;
    HRESULT DeleteStream(const char* name) override;
    void Commit() override;
    CTEnum<const char*>* EnumStreams() override { return EnumNames(STGTY_STREAM); }
    const char* GetPath() override { return m_path; }
    void Revert() override;

    IStorage* NewOleReference() { return m_ole.Share(); }

private:
    IXStorage* NewChild(HRESULT status, IStorage* ole, const char* name);
    CTEnum<const char*>* EnumNames(DWORD type);
    bool IsInItsParent();

    CXString m_path;
    unsigned m_flags;
    Reference<COleStorage> m_parent;
    Reference<IStorage> m_ole;
};

}  // namespace qx

#endif
