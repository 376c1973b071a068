// The values of nodes of any back end. A node in memory shows most of its values where they lie;
// any other node is asked through its interface.
#ifndef QXCORE_PARAM_MEMORY_VALUE_WALK_H
#define QXCORE_PARAM_MEMORY_VALUE_WALK_H

#include "param/memory/mem_param.h"

#include <qxcore/param.h>
#include <qxcore/reference.h>
#include <qxcore/variant.h>

namespace qx {

// The values of a node, one after the other. Name and value stay as they are until the walk goes
// on, whatever becomes of the tree meanwhile.
class ValueWalk {
public:
    explicit ValueWalk(IParam& node);

    // Whether the node gave an enumerator. Without one there is no name.
    bool HasNames() const { return static_cast<bool>(m_names); }
    // The next name, or null at the end.
    const char* Next();
    const char* Name() const { return m_name; }
    // Reads the value of that name: whether the node has one. Without one the value is empty.
    bool Read();
    const CQXVariant& Value() const { return *static_cast<const CQXVariant*>(m_value); }
    // The item in memory whose bytes the value borrows, or null.
    const NamedItem* Borrowed() const { return m_item; }

private:
    IParam& m_node;
    Reference<CTEnum<const char*>> m_names;
    NameSpace::Walk* m_inMemory;  // m_names, where the node lies in memory
    const char* m_name = nullptr;
    const NamedItem* m_item = nullptr;
    CQXVariant m_copy;        // what the node answered
    tagQXVARIANT m_borrowed;  // a record whose bytes lie in the item
    const tagQXVARIANT* m_value = &m_copy;
};

// The values that another node has under the same names.
class ValueLookup {
public:
    explicit ValueLookup(IParam& node) : m_node(node), m_memory(CMemParam::Of(&node)) {}

    // The value of the name that the walk has read, or null. It is shown until the next call and
    // no longer than the tree stays as it is.
    const tagQXVARIANT* Find(const ValueWalk& walk);

private:
    IParam& m_node;
    CMemParam* m_memory;                 // the node, where it lies in memory
    const NamedItem* m_found = nullptr;  // since which nobody else had control
    CQXVariant m_copy;
};

// ------------------------------------------------------------------------------------------------

inline const char* ValueWalk::Next() {
    if (!m_item) m_copy.Clear();
    m_item = nullptr;
    m_value = &m_copy;
    m_name = nullptr;
    if (m_inMemory) {
        m_name = m_inMemory->NextName();
    } else if (m_names) {
        m_names->Next(1, &m_name, nullptr);
    }
    return m_name;
}

}  // namespace qx

#endif
