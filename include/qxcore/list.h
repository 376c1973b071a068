// The lists of the library: circular, one allocation of `new` for each node.
//
// What a list does with its values is told in container_rules.h: texts are copied, class pointers
// owned, interfaces counted. Running out of memory throws CXMemException and leaves the list as it
// was. Threading: none of its own.
#ifndef QXCORE_LIST_H
#define QXCORE_LIST_H

#include <qxcore/container_rules.h>
#include <qxcore/enum.h>
#include <qxcore/heap.h>
#include <qxcore/listitem.h>

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
    ~CTList() { RemoveAll(); }

    // Does nothing after the final clearing; an owned value then stays with the caller.
    void AddTail(Argument value) {
        if (!destroyed) Append(new typename P::Node(value));
    }

    position GetHeadPosition() const { return static_cast<position>(head); }
    // The address of the value at `at`, which moves on. REQUIRES: at is not null.
    Value* GetNext(position& at) const {
        Value* value = &at->value.value;
        at = at == tail ? nullptr : static_cast<position>(at->next);
        return value;
    }
    // 0 after the final clearing. The position may not be used again.
    int RemoveAt(position at) {
        if (destroyed) return 0;
        Unlink(at);
        delete at;
        return 1;
    }
    // The final clearing: the list takes nothing more afterwards.
    void RemoveAll() {
        destroyed = 1;
        while (position at = GetHeadPosition()) {
            Unlink(at);
            delete at;
        }
    }

    IHeap* heap = nullptr;  // stays null: the nodes come from `new`
    unsigned destroyed = 0;
};

template <class T>
class CTPList : public CTList<_CTListPlex<T>> {
public:
    virtual ~CTPList() = default;
};

// The values of a counted list.
template <class List, class T>
class _CListEnumOf : public _CCollectionEnum<List, T> {
public:
    using _CCollectionEnum<List, T>::_CCollectionEnum;

    int Next(unsigned count, T* out, unsigned* fetched) override {
        this->Start();
        unsigned delivered = 0;
        while (out && delivered < count && Valid())
            out[delivered++] = *this->m_collection->GetNext(m_position);
        if (fetched) *fetched = delivered;
        return delivered > 0;
    }
    // 1 if a value remains.
    int Skip(unsigned count) override {
        this->Start();
        while (count-- && Valid()) this->m_collection->GetNext(m_position);
        return Valid();
    }
    void Reset() override {
        m_position = this->m_collection->GetHeadPosition();
        this->m_started = 1;
    }

private:
    bool Valid() const { return m_position && !this->m_collection->destroyed; }

    typename List::position m_position = nullptr;
};

template <class T, class U = T>
class CTListEnum;
template <class T, class U = T>
using _CListEnum = _CListEnumOf<CTListEnum<T, U>, U>;

// A list that is counted itself and gives out enumerators of its values, as U.
template <class T, class U>
class CTListEnum : public CTPList<T>, public CQXUnknownImpl<IQXUnknown> {
public:
    // A reference for the caller, or null after the final clearing.
    CTEnum<U>* CreateEnum() { return this->destroyed ? nullptr : new _CListEnum<T, U>(this); }
};

#endif
