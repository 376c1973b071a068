#include "param/memory/mem_param.h"

#include "param/names/each_name.h"
#include "param/names/path.h"

#include <qxcore/exception.h>

#include <cassert>
#include <utility>

namespace qx {

namespace {

// Opens a closed name space at the end of a scope.
class Reopening {
public:
    explicit Reopening(NamedItems& items) : m_items(items) {}
    Reopening(const Reopening&) = delete;
    Reopening& operator=(const Reopening&) = delete;
    ~Reopening() { m_items.Reopen(); }

private:
    NamedItems& m_items;
};

}  // namespace

// Nodes that have left their parents' maps and wait to be let go, the next one in front. A tree of
// any depth ends so, one node after the other, in the order in which nested calls would end it: a
// node's values, then its children with all they have, then the rest of the node.
//
// Where the end of a value raises, the rest ends all the same.
class CMemParam::Waiting {
public:
    Waiting() = default;
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    ~Waiting() {
        while (m_first) {
            try {
                LetGo();
            } catch (...) {
            }
        }
    }
    // The last reference on the node. REQUIRES: the node stands in no map.
    explicit Waiting(CMemParam& node) : m_first(&node) {}

    // Takes children out of their map, a reference on each, and puts them in front. It is called
    // for one child after the other.
    void Take(const tagQXVARIANT& child) {
        CMemParam* node = NodeIn(child);
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

// A child is an object in its parent's name space.
CMemParam* CMemParam::NodeIn(const tagQXVARIANT& child) {
    return static_cast<CMemParam*>(static_cast<IParam*>(child.value.unknown));
}

// The answer lies in the node itself, at another place than its beginning: a foreign node may pass
// the question on to one of ours, or answer itself to whatever it is asked.
CMemParam* CMemParam::Of(IParam* node) {
    IQXUnknown* answer = nullptr;
    node->QueryInterface(qx_typeid<CMemParam>(), &answer);
    Reference<IQXUnknown> held(answer);
    auto asOurs = static_cast<CMemParam*>(node);
    return answer == static_cast<IRegisterIface*>(asOurs) ? asOurs : nullptr;
}

int CMemParam::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    bool isOwn = id == qx_typeid<CMemParam>() || (!m_hasTable && id == qx_typeid<IRegisterIface>());
    if (isOwn) return QXAnswerQuery(static_cast<IRegisterIface*>(this), out);
    return m_attached.Query(id, out);
}

int CMemParam::RegisterInterface(IQXUnknown* object, qx_type_info const& id, int counted) {
    if (!m_hasTable) {
        m_attached.Register(static_cast<IRegisterIface*>(this), qx_typeid<IRegisterIface>(), 0);
        m_hasTable = true;
    }
    return m_attached.Register(object, id, counted);
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
    try {
        m_values.Close().End();
    } catch (...) {
        TakeChildren(waiting);
        throw;
    }
    TakeChildren(waiting);
}

void CMemParam::TakeChildren(Waiting& waiting) {
    EndingItems children = m_children.Close();
    children.Show([&](const tagQXVARIANT& child) { waiting.Take(child); });
}

Reference<CMemParam> CMemParam::Child(const char* name) const {
    NamedItem* child = m_children.Find(name);
    return Hold(child ? NodeIn(child->value) : nullptr);
}

// Nothing while the children are being cleared.
Reference<CMemParam> CMemParam::AddChild(const char* name) {
    auto child = Make<CMemParam>(name);
    tagQXVARIANT item = {};
    item.type = QXVT_UNKNOWN;
    item.value.unknown = static_cast<IParam*>(child.Get());
    return m_children.Set(name, item) ? child : nullptr;
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
    assert(out);
    if (auto path = SplitAtLast(name)) {
        qx::Reference<IParam> child(OpenSubParam(path->head, 0));
        return child ? child->GetValue(path->tail, out) : 0;
    }
    NamedItem* item = m_values.Find(ValueName(name));
    if (!item) return 0;
    QXVariantCopy(out, &item->value);
    return 1;
}

// A path stores its leaf in the child and, kept so on purpose, the whole name here too: EnumValues
// shows it, and GetValue never reads it.
int CMemParam::SetValue(const char* name, const tagQXVARIANT* value) {
    assert(value);
    if (auto path = SplitAtLast(name)) {
        qx::Reference<IParam> child(OpenSubParam(path->head, 1));
        if (!child) return 0;
        child->SetValue(path->tail, value);
    }
    return m_values.Set(ValueName(name), *value);
}

int CMemParam::DeleteValue(const char* name) {
    const char* own = ValueName(name);
    if (m_values.Find(own)) m_values.Remove(own);
    return 1;
}

// The walk holds the name that it delivered.
void CMemParam::DeleteAllValues() {
    EachNameInPlace(EnumValues(), [this](const char* name) { DeleteValue(name); });
}

void CMemParam::Clear() {
    ClearChildren();
    if (m_values.IsClosed()) return;
    Reopening atEnd(m_values);
    m_values.Close().End();
}

void CMemParam::ClearChildren() {
    if (m_children.IsClosed()) return;
    Reopening atEnd(m_children);
    Waiting waiting;
    TakeChildren(waiting);
    waiting.LetGo();
}

}  // namespace qx

IParam* new_MemParam() {
    try {
        return new qx::CMemParam("");
    } catch (CXMemException&) {
        return nullptr;
    }
}
