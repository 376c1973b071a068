// The open levels of a walk over a tree, kept on the heap: what a file or a caller nests must not
// use up the stack.
#ifndef QXCORE_PARAM_NAMES_WALK_STACK_H
#define QXCORE_PARAM_NAMES_WALK_STACK_H

#include <memory>
#include <utility>

namespace qx {

// A Level is what a call of its own would keep for one node. The levels go from the top down.
template <class Level>
class WalkStack {
public:
    WalkStack() = default;
    WalkStack(const WalkStack&) = delete;
    WalkStack& operator=(const WalkStack&) = delete;
    ~WalkStack() {
        while (Top()) Pop();
    }

    // Null when no level is open. A level stays where it is while others open above it.
    Level* Top() const { return m_top ? &m_top->level : nullptr; }
    // Whether the level on top is the one that was opened first. REQUIRES: a level is open.
    bool IsOutermost() const { return !m_top->below; }

    template <class... Args>
    void Push(Args&&... args) {
        std::unique_ptr<Entry> entry(new Entry{Level(std::forward<Args>(args)...), nullptr});
        entry->below = std::move(m_top);
        m_top = std::move(entry);
    }
    // REQUIRES: a level is open.
    void Pop() {
        std::unique_ptr<Entry> ended = std::move(m_top);
        m_top = std::move(ended->below);
    }

private:
    struct Entry {
        Level level;
        std::unique_ptr<Entry> below;
    };
    std::unique_ptr<Entry> m_top;
};

}  // namespace qx

#endif
