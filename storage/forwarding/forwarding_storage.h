// Storages that stand in front of another one.
#ifndef QXCORE_STORAGE_FORWARDING_FORWARDING_STORAGE_H
#define QXCORE_STORAGE_FORWARDING_FORWARDING_STORAGE_H

#include <qxcore/reference.h>
#include <qxcore/storage.h>

#include <utility>

namespace qx {

// Every operation goes to the inner storage with unchanged arguments and results. What a class does
// itself it overrides.
class CForwardingStorage : public CQXUnknownImpl<IXStorage> {
public:
    IXStorage* CreateStorage(const char* name, int unused) override {
        return m_inner->CreateStorage(name, unused);
    }
    IXStorage* OpenStorage(const char* name) override { return m_inner->OpenStorage(name); }
    HRESULT DeleteStorage(const char* name) override { return m_inner->DeleteStorage(name); }
    IXStorage* GetParent() override { return m_inner->GetParent(); }
    CTEnum<const char*>* EnumStorages() override { return m_inner->EnumStorages(); }
    IXStream* CreateStream(const char* name) override { return m_inner->CreateStream(name); }
    IXStream* OpenStream(const char* name) override { return m_inner->OpenStream(name); }
    HRESULT DeleteStream(const char* name) override { return m_inner->DeleteStream(name); }
    void Commit() override { m_inner->Commit(); }
    CTEnum<const char*>* EnumStreams() override { return m_inner->EnumStreams(); }
    const char* GetPath() override { return m_inner->GetPath(); }

protected:
    CForwardingStorage() = default;
    explicit CForwardingStorage(Reference<IXStorage> inner) : m_inner(std::move(inner)) {}

    // Goes after everything that a derived class holds.
    Reference<IXStorage> m_inner;
};

}  // namespace qx

#endif
