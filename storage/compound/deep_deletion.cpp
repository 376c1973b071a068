#include "storage/compound/deep_deletion.h"

#include <qxcore/reference.h>

#include <objbase.h>

#include <cwchar>
#include <memory>

namespace qx {

namespace {

constexpr unsigned kLevelsForThePlatform = 200;
constexpr size_t kNameSize = 32;  // of an element, with its terminator

// A storage that a walk has come into.
struct Level {
    Reference<IStorage> storage;
    Reference<IEnumSTATSTG> elements;
    OLECHAR name[kNameSize] = {};
    std::unique_ptr<Level> above;
};

// The way from the element down to where the walk stands.
class Descent {
public:
    Descent() = default;
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;
    // One after the other, however many there are.
    ~Descent() {
        while (m_last) Leave();
    }

    Level* Last() const { return m_last.get(); }
    bool IsDeep() const { return m_count > kLevelsForThePlatform; }
    // False where there is no storage of that name that can be opened.
    bool Enter(IStorage* parent, const OLECHAR* name);
    void Leave() {
        std::unique_ptr<Level> above = std::move(m_last->above);
        m_last = std::move(above);
        --m_count;
    }

private:
    std::unique_ptr<Level> m_last;
    unsigned m_count = 0;
};

bool Descent::Enter(IStorage* parent, const OLECHAR* name) {
    auto level = std::make_unique<Level>();
    if (wcslen(name) >= kNameSize ||
        FAILED(parent->OpenStorage(name, nullptr, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                                   level->storage.Receive())) ||
        FAILED(level->storage->EnumElements(0, nullptr, 0, level->elements.Receive())) ||
        !level->elements)
        return false;
    wcscpy(level->name, name);
    level->above = std::move(m_last);
    m_last = std::move(level);
    ++m_count;
    return true;
}

// The next storage among the elements; false at the end.
bool NextStorage(IEnumSTATSTG* elements, OLECHAR (&name)[kNameSize]) {
    for (;;) {
        STATSTG facts = {};
        if (elements->Next(1, &facts, nullptr) != S_OK) return false;
        bool isFound = facts.type == STGTY_STORAGE && wcslen(facts.pwcsName) < kNameSize;
        if (isFound) wcscpy(name, facts.pwcsName);
        CoTaskMemFree(facts.pwcsName);
        if (isFound) return true;
    }
}

// Out of a level whose storages are done. A deep one goes at once; its elements are counted anew
// above it. False when it stays.
bool LeaveLevel(Descent& way) {
    bool isDeep = way.IsDeep();
    OLECHAR name[kNameSize];
    wcscpy(name, way.Last()->name);
    way.Leave();
    if (!isDeep) return true;
    Level* above = way.Last();
    return SUCCEEDED(above->storage->DestroyElement(name)) && SUCCEEDED(above->elements->Reset());
}

}  // namespace

void DeleteDeepLevels(IStorage* parent, const wchar_t* name) {
    Descent way;
    way.Enter(parent, name);
    while (Level* level = way.Last()) {
        OLECHAR child[kNameSize];
        if (NextStorage(level->elements.Get(), child)) {
            // A deep storage that cannot be opened would be met again and again.
            if (!way.Enter(level->storage.Get(), child) && way.IsDeep()) return;
        } else if (!LeaveLevel(way)) {
            return;
        }
    }
}

}  // namespace qx
