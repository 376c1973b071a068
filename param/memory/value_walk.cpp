#include "param/memory/value_walk.h"

namespace qx {

ValueWalk::ValueWalk(IParam& node)
    : m_node(node),
      m_names(node.EnumValues()),
      m_inMemory(CMemParam::Of(&node) ? static_cast<NameSpace::Walk*>(m_names.Get()) : nullptr) {}

// An item that has left the node, or whose name may be a path, is not what the node answers.
bool ValueWalk::Read() {
    const NamedItem* item = m_inMemory ? m_inMemory->Last() : nullptr;
    if (!item || !item->stored || item->mayBePath || !item->IsBorrowable())
        return m_node.GetValue(m_name, &m_copy) != 0;
    m_item = item;
    m_borrowed = item->value;
    m_value = &m_borrowed;
    return true;
}

const tagQXVARIANT* ValueLookup::Find(const ValueWalk& walk) {
    if (m_memory) {
        const NamedItem* like = walk.Borrowed();
        m_found = like ? m_memory->ValueLike(*like, m_found) : nullptr;
        if (m_found) return &m_found->value;
    }
    m_copy.Clear();
    return m_node.GetValue(walk.Name(), &m_copy) ? &m_copy : nullptr;
}

}  // namespace qx
