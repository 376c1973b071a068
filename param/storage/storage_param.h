// A storage as a node of a parameter tree.
#ifndef QXCORE_PARAM_STORAGE_STORAGE_PARAM_H
#define QXCORE_PARAM_STORAGE_STORAGE_PARAM_H

#include <qxcore/attached.h>
#include <qxcore/param.h>
#include <qxcore/reference.h>
#include <qxcore/storage.h>
#include <qxcore/string.h>

namespace qx {

// Each node holds the one above it, so a child alone keeps the whole way up to the root open, and
// the commits of closing nodes reach the root.
//
// No operation lets a CXException out. Clear takes the storage from the node; whatever the node is
// asked afterwards, it answers that there is nothing.
class CIXStorParam final : public CQXUnknownImplParent<IParam, IParam>, public IRegisterIface {
public:
    // The parent is null for a root.
    CIXStorParam(IXStorage* storage, CIXStorParam* parent, const char* name);
    ~CIXStorParam() override;

    unsigned AddRef() override { return m_held = Base::AddRef(); }
    unsigned Release() override;
    void SetParent(IParam* parent) override;
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

private:
    using Base = CQXUnknownImplParent<IParam, IParam>;

    CAttachedInterfaces m_attached;
    CXString m_name;
    Reference<IXStorage> m_storage;   // none after Clear
    unsigned m_held = 1;              // the public count
    CIXStorParam* m_above;            // the parent, unless a host has set another one
    CIXStorParam* m_below = nullptr;  // the node that closed this one

    enum class Missing { stays, isMade };
    IXStorage* Storage() const;
    Reference<CIXStorParam> NewChild(const char* name);
    Reference<CIXStorParam> Child(const char* name, Missing missing);
    int SetOwnValue(const char* name, const tagQXVARIANT* value);
    void LetGoOfStorage();
    CIXStorParam* CloseUpwards();
    static void End(CIXStorParam* top);
};

}  // namespace qx

#endif
