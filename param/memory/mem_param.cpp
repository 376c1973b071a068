#include "param/memory/mem_param.h"

#include "param/names/each_name.h"
#include "param/names/path.h"

#include <qxcore/exception.h>

CMemParam::CMemParam(const char* name) : m_name(name) {
    m_attached.Register(static_cast<IRegisterIface*>(this), qx_typeid<IRegisterIface>(), 0);
}

unsigned CMemParam::Release() {
    if (--m_publicRefs != 0) return m_publicRefs;
    delete this;
    return 0;
}

// The child with a reference for the caller, or null.
IParam* CMemParam::Child(const char* name) {
    IParam** child = m_children.Find(name);
    if (!child) return nullptr;
    (*child)->AddRef();
    return *child;
}

// A new child with a reference for the caller; null while the children are being cleared.
IParam* CMemParam::AddChild(const char* name) {
    qx::Reference<IParam> child(new CMemParam(name));
    return m_children.Set(name, child.Get()) ? child.Detach() : nullptr;
}

IParam* CMemParam::CreateSubParam(const char* name) {
    if (!name) name = "";
    if (auto path = SplitAtFirst(name)) {
        qx::Reference<IParam> head(Child(path->head));
        if (!head) head = qx::Reference<IParam>(AddChild(path->head));
        return head ? head->CreateSubParam(path->tail) : nullptr;
    }
    IParam* child = Child(name);
    if (!child) return AddChild(name);
    child->Clear();
    return child;
}

IParam* CMemParam::OpenSubParam(const char* name, int create) {
    if (!name) name = "";
    if (auto path = SplitAtFirst(name)) {
        qx::Reference<IParam> head(Child(path->head));
        if (head) return head->OpenSubParam(path->tail, create);
        // A missing first level is dropped: "a\b" without "a" makes "b" here.
        return create ? CreateSubParam(path->tail) : nullptr;
    }
    IParam* child = Child(name);
    return child || !create ? child : CreateSubParam(name);
}

void CMemParam::DeleteSubParam(const char* name) {
    CXString copy(name);  // the name may lie in the list
    if (qx::Reference<IParam> child(OpenSubParam(copy, 0)); child) child->Clear();
    m_children.Remove(copy);
}

void CMemParam::DeleteAllSubParams() {
    EachName(EnumSubParams(), [this](const char* name) { DeleteSubParam(name); });
    m_children.Clear();
}

int CMemParam::GetValue(const char* name, tagQXVARIANT* out) {
    if (auto path = SplitAtLast(name)) {
        qx::Reference<IParam> child(OpenSubParam(path->head, 0));
        return child ? child->GetValue(path->tail, out) : 0;
    }
    CQXVariant* value = m_values.Find(ValueName(name));
    if (!value) return 0;
    QXVariantCopy(out, value);
    return 1;
}

// A path stores its leaf in the child and, kept so on purpose, the whole name here too: EnumValues
// shows it, and GetValue never reads it.
int CMemParam::SetValue(const char* name, const tagQXVARIANT* value) {
    if (auto path = SplitAtLast(name)) {
        qx::Reference<IParam> child(OpenSubParam(path->head, 1));
        if (!child) return 0;
        child->SetValue(path->tail, value);
    }
    return m_values.Set(ValueName(name), static_cast<const CQXVariant&>(*value));
}

int CMemParam::DeleteValue(const char* name) {
    const char* own = ValueName(name);
    if (m_values.Find(own)) m_values.Remove(own);
    return 1;
}

void CMemParam::DeleteAllValues() {
    EachName(EnumValues(), [this](const char* name) { DeleteValue(name); });
}

void CMemParam::Clear() {
    m_children.Clear();
    m_values.Clear();
}

IParam* new_MemParam() {
    try {
        return new CMemParam("");
    } catch (CXMemException&) {
        return nullptr;
    }
}
