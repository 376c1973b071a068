#include "param/memory/mem_param.h"

#include "param/names/each_name.h"
#include "param/names/path.h"

#include <qxcore/exception.h>

#include <utility>

namespace qx {

// Nodes that have left their parents' maps and wait to be let go, the next one in front. A tree of
// any depth ends so, one node after the other, in the order in which nested calls would end it: a
// node's values, then its children with all they have, then the rest of the node.
class CMemParam::Waiting {
public:
    Waiting() = default;
    // The last reference on the node. REQUIRES: the node stands in no map.
    explicit Waiting(CMemParam& node) : m_first(&node) {}

    // Takes children out of their map, a reference on each, and puts them in front. It is called
    // for one child after the other.
    void Take(IParam* child) {
        auto node = static_cast<CMemParam*>(child);
        node->AddRef();
        node->m_next = *m_behindTaken;
        *m_behindTaken = node;
        m_behindTaken = &node->m_next;
    }

    void LetGo() {
        while (CMemParam* node = m_first) {
            m_behindTaken = &m_first;
            if (!node->m_ending && --node->m_publicRefs == 0) {
                node->BeginEnd(*this);
                continue;
            }
            m_first = std::exchange(node->m_next, nullptr);
            if (node->m_ending) delete node;
        }
    }

private:
    CMemParam* m_first = nullptr;
    CMemParam** m_behindTaken = &m_first;  // where the next child goes
};

CMemParam::CMemParam(const char* name) : m_name(name) {
    m_attached.Register(static_cast<IRegisterIface*>(this), qx_typeid<IRegisterIface>(), 0);
}

unsigned CMemParam::Release() {
    if (m_publicRefs > 1) return --m_publicRefs;
    Waiting(*this).LetGo();
    return 0;
}

// The values go, and the children wait in front of the node. Whom the values call may query and
// release the node without ending it twice.
void CMemParam::BeginEnd(Waiting& waiting) {
    m_publicRefs = 1;
    m_ending = true;
    m_values.Close();
    m_children.Close([&](IParam* child) { waiting.Take(child); });
}

Reference<CMemParam> CMemParam::Child(const char* name) {
    IParam** child = m_children.Find(name);
    return Hold(child ? static_cast<CMemParam*>(*child) : nullptr);
}

// Nothing while the children are being cleared.
Reference<CMemParam> CMemParam::AddChild(const char* name) {
    auto child = Make<CMemParam>(name);
    return m_children.Set(name, child.Get()) ? child : nullptr;
}

IParam* CMemParam::CreateSubParam(const char* name) {
    PathLevels path(name ? name : "");
    Reference<CMemParam> node = Hold(this);
    while (node && path.MoreThanOne()) {
        CXString level = path.TakeFirst();
        Reference<CMemParam> child = node->Child(level);
        node = child ? child : node->AddChild(level);
    }
    if (!node) return nullptr;
    Reference<CMemParam> last = node->Child(path.Rest());
    if (!last) return node->AddChild(path.Rest()).Detach();
    last->Clear();
    return last.Detach();
}

IParam* CMemParam::OpenSubParam(const char* name, int create) {
    PathLevels path(name ? name : "");
    Reference<CMemParam> node = Hold(this);
    while (path.MoreThanOne()) {
        Reference<CMemParam> child = node->Child(path.TakeFirst());
        // A missing level is dropped: "a\b" without "a" makes "b" here.
        if (!child) return create ? node->CreateSubParam(path.Rest()) : nullptr;
        node = child;
    }
    Reference<CMemParam> last = node->Child(path.Rest());
    return last || !create ? last.Detach() : node->CreateSubParam(path.Rest());
}

void CMemParam::DeleteSubParam(const char* name) {
    CXString copy(name);  // the name may lie in the list
    if (qx::Reference<IParam> child(OpenSubParam(copy, 0)); child) child->Clear();
    m_children.Remove(copy);
}

void CMemParam::DeleteAllSubParams() {
    EachName(EnumSubParams(), [this](const char* name) { DeleteSubParam(name); });
    ClearChildren();
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
    ClearChildren();
    m_values.Clear();
}

void CMemParam::ClearChildren() {
    Waiting waiting;
    m_children.Clear([&](IParam* child) { waiting.Take(child); }, [&] { waiting.LetGo(); });
}

}  // namespace qx

IParam* new_MemParam() {
    try {
        return new qx::CMemParam("");
    } catch (CXMemException&) {
        return nullptr;
    }
}
