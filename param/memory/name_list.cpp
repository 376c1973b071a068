#include "param/memory/name_list.h"

#include <cstring>
#include <new>

namespace qx {

// One block holds the links and the text.
struct NameList::Name : QX_LISTITEM {
    char* Text() { return reinterpret_cast<char*>(this + 1); }
};

// Each reference holds the list too.
class NameList::Walk final : public _CCollectionEnum<NameList, const char*>, public QX_LISTITEM {
public:
    explicit Walk(NameList* names) : _CCollectionEnum(names), QX_LISTITEM{} {
        names->m_walks.Append(this);
    }
    ~Walk() { m_collection->m_walks.Unlink(this); }

    int Next(unsigned count, const char** out, unsigned* fetched) override {
        Start();
        unsigned delivered = 0;
        for (; out && delivered < count && m_at; Step()) out[delivered++] = m_at->Text();
        if (fetched) *fetched = delivered;
        return delivered > 0;
    }
    // 1 if a name remains.
    int Skip(unsigned count) override {
        Start();
        while (count-- && m_at) Step();
        return m_at != nullptr;
    }
    void Reset() override {
        m_at = m_collection->First();
        m_started = 1;
    }

    void Leave(const Name* removed) {
        if (m_at == removed) Step();
    }
    void End() { m_at = nullptr; }

private:
    Name* m_at = nullptr;  // the next to deliver

    void Step() { m_at = m_collection->Behind(m_at); }
};

NameList::Name* NameList::First() const {
    return static_cast<Name*>(m_names.head);
}

// Null behind the last.
NameList::Name* NameList::Behind(const Name* name) const {
    return name == m_names.tail ? nullptr : static_cast<Name*>(name->next);
}

NameList::Name* NameList::Add(const char* text) {
    size_t size = strlen(text) + 1;
    auto name = new (operator new(sizeof(Name) + size)) Name();
    memcpy(name->Text(), text, size);
    m_names.Append(name);
    return name;
}

void NameList::Remove(Name* name) noexcept {
    QX_LISTITEM* walk = m_walks.head;
    for (unsigned left = m_walks.count; left; --left, walk = walk->next)
        static_cast<Walk*>(walk)->Leave(name);
    m_names.Unlink(name);
    operator delete(name);
}

void NameList::Remove(const char* text) {
    for (Name* name = First(); name; name = Behind(name)) {
        if (_stricmp(name->Text(), text) == 0) return Remove(name);
    }
}

void NameList::Clear() noexcept {
    QX_LISTITEM* walk = m_walks.head;
    for (unsigned left = m_walks.count; left; --left, walk = walk->next)
        static_cast<Walk*>(walk)->End();
    while (Name* name = First()) {
        m_names.Unlink(name);
        operator delete(name);
    }
}

CTEnum<const char*>* NameList::Enumerate() {
    return new Walk(this);
}

}  // namespace qx
