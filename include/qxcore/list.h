// The lists of the library: circular, one allocation of `new` for each node.
//
//     CTPList<const char*> names;  // copies the texts
//     names.AddTail("first");
//     for (auto at = names.GetHeadPosition(); at;) Use(*names.GetNext(at));
//
// What a list does with its values is told in container_rules.h: texts are copied, class pointers
// owned, interfaces counted.
//
// State: RemoveAll is final; the list takes nothing more afterwards.
//
// Errors: running out of memory throws CXMemException and leaves the list as it was. What the
// release of a value raises reaches the caller once the list is whole again. Threading: none of its
// own.
#ifndef QXCORE_LIST_H
#define QXCORE_LIST_H

#include <qxcore/container_rules.h>
#include <qxcore/enum.h>
#include <qxcore/heap.h>
#include <qxcore/listitem.h>

#include <cassert>
#include <memory>

// The node policy for values of type T.
template <class T>
struct _CTListPlex {
    using Value = T;
    using Argument = typename QXValueRule<T>::Argument;

    struct Node : QX_LISTITEM {
        explicit Node(Argument value) : QX_LISTITEM{}, value(value) {}
        QXHeldValue<T> value;
    };
};

// P is the node policy.
template <class P>
class CTList : public COList {
public:
    using Value = typename P::Value;
    using Argument = typename P::Argument;
    // A node; null behind the end.
    using position = typename P::Node*;

    CTList() = default;
    CTList(const CTList&) = delete;
    CTList& operator=(const CTList&) = delete;
    // As RemoveAll, but drops what the release of a value raises.
    ~CTList();

    // Does nothing after the final clearing; an owned value then stays with the caller.
    void AddTail(Argument value);

    position GetHeadPosition() const { return static_cast<position>(head); }
    // The address of the value at `at`, which moves on. REQUIRES: at is not null.
    Value* GetNext(position& at) const;
    // 1; 0 after the final clearing. The position may not be used again. REQUIRES: at is of this
    // list.
    int RemoveAt(position at);
    // The final clearing. All values go, also when the release of one raises; the first failure
    // then reaches the caller.
    void RemoveAll();

    IHeap* heap = nullptr;   // stays null: the nodes come from `new`
    unsigned destroyed = 0;  // 1 after the final clearing

private:
    // The first node, taken off the list; null when the list is empty.
    position Cut();
    static void Dispose(position node);
};

// The list that holds values of type T.
template <class T>
class CTPList : public CTList<_CTListPlex<T>> {
public:
    virtual ~CTPList() = default;
};

// The values of a counted list, as T.
template <class List, class T>
class _CListEnumOf : public _CCollectionEnum<List, T> {
public:
    using _CCollectionEnum<List, T>::_CCollectionEnum;

    int Next(unsigned count, T* out, unsigned* fetched) override;
    // 1 if a value remains.
    int Skip(unsigned count) override;
    void Reset() override;

private:
    bool Valid() const { return m_position && !this->m_collection->destroyed; }

    typename List::position m_position = nullptr;
};

template <class T, class U = T>
class CTListEnum;
template <class T, class U = T>
using _CListEnum = _CListEnumOf<CTListEnum<T, U>, U>;

// A list that is counted itself and gives out enumerators of its values, as U. Each reference on an
// enumerator holds the list too.
template <class T, class U>
class CTListEnum : public CTPList<T>, public CQXUnknownImpl<IQXUnknown> {
public:
    // A reference for the caller, or null after the final clearing.
    CTEnum<U>* CreateEnum() { return this->destroyed ? nullptr : new _CListEnum<T, U>(this); }
};

// ------------------------------------------------------------------------------------------------

template <class P>
CTList<P>::~CTList() {
    destroyed = 1;
    while (position node = Cut()) delete node;
}

template <class P>
void CTList<P>::AddTail(Argument value) {
    if (!destroyed) Append(new typename P::Node(value));
}

template <class P>
typename CTList<P>::Value* CTList<P>::GetNext(position& at) const {
    assert(at);
    Value* value = &at->value.value;
    at = at == tail ? nullptr : static_cast<position>(at->next);
    return value;
}

template <class P>
int CTList<P>::RemoveAt(position at) {
    if (destroyed) return 0;
    assert(at);
    Unlink(at);
    Dispose(at);
    return 1;
}

template <class P>
void CTList<P>::RemoveAll() {
    struct Rest {  // goes without a word of what it raises
        CTList& list;
        ~Rest() {
            while (position node = list.Cut()) delete node;
        }
    };
    destroyed = 1;
    Rest rest{*this};
    while (position node = Cut()) Dispose(node);
}

template <class P>
typename CTList<P>::position CTList<P>::Cut() {
    position first = GetHeadPosition();
    if (first) Unlink(first);
    return first;
}

// Frees the node and passes on what its value's release raises.
template <class P>
void CTList<P>::Dispose(position node) {
    std::unique_ptr<typename P::Node> freed(node);
    node->value.LetGo();
}

template <class List, class T>
int _CListEnumOf<List, T>::Next(unsigned count, T* out, unsigned* fetched) {
    this->Start();
    unsigned delivered = 0;
    while (out && delivered < count && Valid())
        out[delivered++] = *this->m_collection->GetNext(m_position);
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

template <class List, class T>
int _CListEnumOf<List, T>::Skip(unsigned count) {
    this->Start();
    while (count-- && Valid()) this->m_collection->GetNext(m_position);
    return Valid();
}

template <class List, class T>
void _CListEnumOf<List, T>::Reset() {
    m_position = this->m_collection->GetHeadPosition();
    this->m_started = 1;
}

#endif
