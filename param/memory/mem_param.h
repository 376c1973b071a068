// A node of a parameter tree in memory.
#ifndef QXCORE_PARAM_MEMORY_MEM_PARAM_H
#define QXCORE_PARAM_MEMORY_MEM_PARAM_H

#include "param/memory/name_space.h"

#include <qxcore/attached.h>
#include <qxcore/param.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

namespace qx {

class CMemParam final : public CQXUnknownImpl<IParam>, public IRegisterIface {
public:
    explicit CMemParam(const char* name) : m_name(name) {}

    // The node as one of this class, or null where it is another one's. Then its enumerators are
    // NameSpace::Walks.
    static CMemParam* Of(IParam* node);

    // The public count is the node's own.
    unsigned AddRef() override { return ++m_publicRefs; }
    unsigned Release() override;
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override;
    int RegisterInterface(IQXUnknown* object, qx_type_info const& id, int counted) override;

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

    // As SetValue under the name of another item, which is no path.
    void SetValueLike(const NamedItem& like, const tagQXVARIANT& value) {
        m_values.Set(like.Name(), like.hash, value);
    }
    // The item of the same name as `like`, which is no path. It often is the one behind `one`. Null
    // where there is none.
    const NamedItem* ValueLike(const NamedItem& like, const NamedItem* one) const {
        return m_values.FindBehind(one, like.hash);
    }

private:
    CAttachedInterfaces m_attached;
    unsigned m_publicRefs = 1;
    NamedItems m_children;
    NamedItems m_values;
    CXString m_name;              // under which the parent knows the node; empty for a root
    CMemParam* m_next = nullptr;  // among the nodes that wait for their end
    bool m_ending = false;        // its values are gone, and its children wait in front of it
    bool m_hasTable = false;      // before, the one entry of the table needs none

    class Waiting;

    static CMemParam* NodeIn(const tagQXVARIANT& child);
    void BeginEnd(Waiting& waiting);
    void TakeChildren(Waiting& waiting);
    void ClearChildren();
    Reference<CMemParam> Child(const char* name) const;
    Reference<CMemParam> AddChild(const char* name);
};

}  // namespace qx

// By which a node is told from those of other classes; nobody else knows it.
QX_DECLARE_TYPEID(qx::CMemParam, ".?AVCMemParam@qx@@");

#endif
