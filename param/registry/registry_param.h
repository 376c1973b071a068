// A key of the registry as a node of a parameter tree.
#ifndef QXCORE_PARAM_REGISTRY_REGISTRY_PARAM_H
#define QXCORE_PARAM_REGISTRY_REGISTRY_PARAM_H

#include <qxcore/attached.h>
#include <qxcore/param.h>
#include <qxcore/platform.h>
#include <qxcore/reference.h>

#include <utility>

namespace qx {

// An open key, closed with its owner.
class RegistryKey {
public:
    RegistryKey() = default;
    RegistryKey(RegistryKey&& other) noexcept : m_key(std::exchange(other.m_key, nullptr)) {}
    RegistryKey& operator=(RegistryKey&&) = delete;
    ~RegistryKey() {
        if (m_key) RegCloseKey(m_key);
    }

    HKEY Get() const { return m_key; }
    // Where an opening call puts its key. REQUIRES: nothing is held yet.
    HKEY* Out() { return &m_key; }

private:
    HKEY m_key = nullptr;
};

// Names go to the platform as they are: it alone knows what "\" and an empty name mean. The class
// adds no slot to those of IParam, not even a destructor.
class CRegistryParam final : public IParam, public IRegisterIface {
public:
    explicit CRegistryParam(RegistryKey key);
    CRegistryParam(const CRegistryParam&) = delete;
    CRegistryParam& operator=(const CRegistryParam&) = delete;

    unsigned AddRef() override { return ++m_refs; }
    unsigned Release() override;
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return m_attached.Query(id, out);
    }
    int RegisterInterface(IQXUnknown* object, qx_type_info const& id, int counted) override {
        return m_attached.Register(object, id, counted);
    }

    IParam* CreateSubParam(const char* name) override;
    IParam* OpenSubParam(const char* name, int create) override;
    void DeleteSubParam(const char* name) override;
    void DeleteAllSubParams() override;
    CTEnum<const char*>* EnumSubParams() override;
    int GetValue(const char* name, tagQXVARIANT* out) override;
    int SetValue(const char* name, const tagQXVARIANT* value) override;
    int DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override;
    void Clear() override;

    // The key of that name below `key`, or null.
    static Reference<CRegistryParam> Open(HKEY key, const char* name);

private:
    RegistryKey m_key;
    CAttachedInterfaces m_attached;
    unsigned m_refs = 1;

    ~CRegistryParam() = default;

    class Path;
    enum class Subkeys { stay, go };  // what becomes of the keys below an emptied one
    void Empty(Subkeys subkeys);
};

}  // namespace qx

#endif
