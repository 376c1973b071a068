// A node of a parameter tree in memory.
#ifndef QXCORE_PARAM_MEMORY_MEM_PARAM_H
#define QXCORE_PARAM_MEMORY_MEM_PARAM_H

#include "param/memory/named_items.h"

#include <qxcore/attached.h>
#include <qxcore/param.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

namespace qx {

class CMemParam final : public CQXUnknownImpl<IParam>, public IRegisterIface {
public:
    explicit CMemParam(const char* name);

    // The public count is the node's own.
    unsigned AddRef() override { return ++m_publicRefs; }
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
    CTEnum<const char*>* EnumSubParams() override { return m_children.Enumerate(); }
    int GetValue(const char* name, tagQXVARIANT* out) override;
    int SetValue(const char* name, const tagQXVARIANT* value) override;
    int DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override { return m_values.Enumerate(); }
    void Clear() override;

private:
    CAttachedInterfaces m_attached;
    unsigned m_publicRefs = 1;
    NamedItems<IParam*> m_children;
    NamedItems<CQXVariant> m_values;
    CXString m_name;              // under which the parent knows the node; empty for a root
    CMemParam* m_next = nullptr;  // among the nodes that wait for their end
    bool m_ending = false;        // its values are gone, and its children wait in front of it

    class Waiting;

    void BeginEnd(Waiting& waiting);
    void ClearChildren();
    Reference<CMemParam> Child(const char* name);
    Reference<CMemParam> AddChild(const char* name);
};

}  // namespace qx

#endif
