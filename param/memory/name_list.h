// The names of one name space in the order of first creation, and the walks over them.
#ifndef QXCORE_PARAM_MEMORY_NAME_LIST_H
#define QXCORE_PARAM_MEMORY_NAME_LIST_H

#include <qxcore/enum.h>
#include <qxcore/listitem.h>

namespace qx {

// The live list is walked, so a walk sees what is added before it has come to its end. An entry
// that is removed moves the walks that stand at it on to the next one; after Clear a walk is at its
// end until it is reset.
class NameList final : public CQXUnknownImpl<IQXUnknown> {
public:
    struct Name;
    class Walk;

    NameList() = default;
    NameList(const NameList&) = delete;
    NameList& operator=(const NameList&) = delete;
    ~NameList() { Clear(); }

    // The name is copied.
    Name* Add(const char* text);
    void Remove(Name* name) noexcept;
    // The first name that is equal without regard to case, if there is one.
    void Remove(const char* text);
    void Clear() noexcept;
    // A walk with a reference for the caller.
    CTEnum<const char*>* Enumerate();

private:
    COList m_names;
    COList m_walks;

    Name* First() const;
    Name* Behind(const Name* name) const;
};

}  // namespace qx

#endif
