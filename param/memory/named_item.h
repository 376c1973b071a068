// One name of a node in memory, with what it names.
#ifndef QXCORE_PARAM_MEMORY_NAMED_ITEM_H
#define QXCORE_PARAM_MEMORY_NAMED_ITEM_H

#include <qxcore/listitem.h>
#include <qxcore/variant.h>

#include <utility>

namespace qx {

// One block holds the links, the name behind them and, behind that, a short text or a short blob of
// the value; longer ones have a block of their own. A child is an object.
//
// The list of names, the chains and the walks that have delivered the name last each know the item.
// It goes with the last of them.
struct NamedItem : QX_LISTITEM {
    NamedItem* behind;   // in its chain, or among items that end
    NamedItem** before;  // what points here in its chain
    unsigned hash;
    unsigned nameSize;  // with the terminator
    unsigned walks;
    unsigned short room;  // behind the name
    bool listed : 1;
    bool stored : 1;
    bool mayBePath : 1;  // whether a byte of the name looks like a delimiter
    tagQXVARIANT value;  // empty unless it is stored

    // Neither listed nor stored yet.
    static NamedItem* Make(const char* name, unsigned hash, const tagQXVARIANT& value);
    // Destroys the item when nobody knows it any more.
    void FreeIfUnknown() noexcept {
        if (!listed && !stored && !walks) ::operator delete(this);
    }

    const char* Name() const { return reinterpret_cast<const char*>(this + 1); }
    // Whether a copy of the record alone serves as the value as long as a walk stands here,
    // whatever becomes of the item meanwhile.
    bool IsBorrowable() const;

    // The new value is whole and in place before the old one goes: what goes may look into the
    // tree, and making the new one may find no memory.
    void Replace(const tagQXVARIANT& with);
    // Passes on what the release of an object raises.
    void EndValue();

private:
    void* Room() { return reinterpret_cast<char*>(this + 1) + nameSize; }
    const void* Room() const { return const_cast<NamedItem*>(this)->Room(); }
    void Take(const tagQXVARIANT& with);
    void End(tagQXVARIANT& old) const;
};

// Items that have left a name space and end one after the other.
class EndingItems {
public:
    explicit EndingItems(NamedItem* first) : m_first(first) {}
    EndingItems(EndingItems&& other) noexcept : m_first(std::exchange(other.m_first, nullptr)) {}
    EndingItems& operator=(EndingItems&&) = delete;
    // What is left ends, without a word of what it raises.
    ~EndingItems();

    // Shows the value of each to `visit` before any of them goes.
    template <class Visit>
    void Show(const Visit& visit) const {
        for (NamedItem* item = m_first; item; item = item->behind) visit(item->value);
    }
    // The first failure reaches the caller; the rest ends with this object.
    void End();

private:
    NamedItem* m_first;
};

}  // namespace qx

#endif
