// A node of a parameter tree over an ini file: one section, whose name is the node's path. The file
// is not held open, and no image of it is kept: each operation is a call of the platform's.
#ifndef QXCORE_PARAM_INI_FILE_PARAM_H
#define QXCORE_PARAM_INI_FILE_PARAM_H

#include <qxcore/attached.h>
#include <qxcore/param.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

namespace qx {

// The slots of IParam come first, then the three of its own, in their order; the destructor has
// none.
class CIniFileParam final : public IParam, public IRegisterIface {
public:
    // The root of the file, with the section "\".
    explicit CIniFileParam(const char* file);

    unsigned AddRef() override { return ++m_refs; }
    unsigned Release() override;
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return m_attached.Query(id, out);
    }
    IParam* CreateSubParam(const char* name) override;
    IParam* OpenSubParam(const char* name, int create) override;
    void DeleteSubParam(const char* name) override;
    void DeleteAllSubParams() override;
    CTEnum<const char*>* EnumSubParams() override { return ListSubParams(); }
    int GetValue(const char* name, tagQXVARIANT* out) override;
    int SetValue(const char* name, const tagQXVARIANT* value) override;
    int DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override;
    void Clear() override;

    virtual CTEnum<const char*>* ListSubParams();  // what EnumSubParams answers
    // Takes a reference on the new parent before it drops the old one; null makes a root.
    virtual void SetParent(IParam* parent);
    // With a reference for the caller; null for a root.
    virtual IParam* GetParent();

    int RegisterInterface(IQXUnknown* object, qx_type_info const& id, int counted) override {
        return m_attached.Register(object, id, counted);
    }

    CIniFileParam(const CIniFileParam&) = delete;
    CIniFileParam& operator=(const CIniFileParam&) = delete;

private:
    CAttachedInterfaces m_attached;
    unsigned m_refs = 1;
    Reference<IParam> m_parent;
    CIniFileParam* m_parentNode = nullptr;  // the parent, where it is of this class
    const CXString m_file;
    const CXString m_section;

    // A child. Making a node writes the marker of its section, if it is missing.
    CIniFileParam(CIniFileParam& parent, const CXString& section);
    ~CIniFileParam() = default;

    CXString SectionOf(const char* child) const;
    Reference<CIniFileParam> Child(const char* name);
    Reference<CIniFileParam> NewChild(const char* name);
    bool IsRoot() const;
    void Begin();
    void MakeFolder() const;
    int WriteMarker() const;
    void RemoveSection() const;
};

}  // namespace qx

#endif
