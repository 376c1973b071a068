// Trees in streams: for each node its children, then its values, each run ended by an empty name.
#include "param/memory/value_walk.h"
#include "param/names/walk_stack.h"

#include <qxcore/exception.h>
#include <qxcore/param.h>
#include <qxcore/reference.h>
#include <qxcore/stream.h>

#include <cassert>
#include <utility>

namespace qx {

namespace {

using Names = CTEnum<const char*>;

// The next name that is not empty, which would end the run.
const char* NextName(Names* names) {
    const char* name;
    while (names && names->Next(1, &name, nullptr)) {
        if (name && *name) return name;
    }
    return nullptr;
}

// Saving

// A node on its way into the stream. A child that could not be opened has no node and is saved as
// an empty one, so that what follows is read as what it is.
struct SaveLevel {
    Reference<IParam> node;
    bool begun = false;
    Reference<Names> children = nullptr;
};

void SaveValues(IXStream& stream, IParam& node) {
    ValueWalk values(node);
    while (const char* name = values.Next()) {
        stream.WriteString(name);
        values.Read();
        stream.WriteVariant(&values.Value());
    }
}

// Goes on to the next child: true, and the child to be saved. Behind the last one saves the values.
bool SaveOn(IXStream& stream, SaveLevel& level, Reference<IParam>& child) {
    if (level.node && !std::exchange(level.begun, true))
        level.children = Reference<Names>(level.node->EnumSubParams());
    if (const char* name = NextName(level.children.Get())) {
        stream.WriteString(name);
        child = Reference<IParam>(level.node->OpenSubParam(name, 0));
        return true;
    }
    stream.WriteString("");
    if (level.node) SaveValues(stream, *level.node.Get());
    stream.WriteString("");
    return false;
}

// A failure ends its node, and the nodes above go on. Answers for the outermost node.
int SaveTree(IXStream& stream, IParam* root) {
    int result = 1;
    WalkStack<SaveLevel> levels;
    levels.Push(SaveLevel{Hold(root)});
    while (SaveLevel* level = levels.Top()) {
        try {
            Reference<IParam> child;
            if (SaveOn(stream, *level, child)) {
                levels.Push(SaveLevel{std::move(child)});
                continue;
            }
        } catch (CXFileException&) {
            if (levels.IsOutermost()) result = 0;
        }
        levels.Pop();
    }
    return result;
}

// Loading

// A node on its way out of the stream. One that could not be created is read over.
struct LoadLevel {
    Reference<IParam> node;
    bool begun = false;
};

void Empty(IParam* node) {
    if (!node) return;
    node->DeleteAllSubParams();
    node->DeleteAllValues();
}

class TreeLoader {
public:
    explicit TreeLoader(IXStream& stream) : m_stream(stream) {}

    // A failure leaves its node empty, and the nodes above go on. Answers for the outermost node.
    int Load(IParam* root) {
        m_levels.Push(LoadLevel{Hold(root)});
        while (LoadLevel* level = m_levels.Top()) {
            try {
                Reference<IParam> child;
                if (LoadOn(*level, child)) {
                    m_levels.Push(LoadLevel{std::move(child)});
                    continue;
                }
            } catch (CXFileException&) {
                if (EmptyFailed()) return 0;
                continue;
            }
            m_levels.Pop();
        }
        return 1;
    }

private:
    static constexpr int kNameSize = 1024;

    IXStream& m_stream;
    WalkStack<LoadLevel> m_levels;
    char m_name[kNameSize + 2] = {};  // ReadString may terminate behind the bytes it is given

    // Ends the node on top, which failed. One that cannot be emptied is a failure of the node above
    // it. Whether it was the outermost one that ended; its own failure passes on.
    bool EmptyFailed() {
        for (;;) {
            bool isOutermost = m_levels.IsOutermost();
            try {
                Empty(m_levels.Top()->node.Get());
                m_levels.Pop();
                return isOutermost;
            } catch (CXFileException&) {
                if (isOutermost) throw;
                m_levels.Pop();
            }
        }
    }

    // False for the empty name that ends a run. The terminator counts.
    bool ReadName() { return m_stream.ReadString(m_name, kNameSize) >= 2; }

    // Goes on to the next child: true, and the child to be loaded. Behind the last one loads the
    // values.
    bool LoadOn(LoadLevel& level, Reference<IParam>& child) {
        IParam* node = level.node.Get();
        if (!std::exchange(level.begun, true)) Empty(node);
        if (ReadName()) {
            child = Reference<IParam>(node ? node->CreateSubParam(m_name) : nullptr);
            return true;
        }
        while (ReadName()) {
            CQXVariant value;
            m_stream.ReadVariant(&value);
            if (node) node->SetValue(m_name, &value);
        }
        return false;
    }
};

}  // namespace

}  // namespace qx

int SaveParamToXStream(IXStream* stream, IParam* param) {
    assert(stream);
    return param ? qx::SaveTree(*stream, param) : 0;
}

int LoadParamFromXStream(IXStream* stream, IParam* param) {
    assert(stream);
    return param ? qx::TreeLoader(*stream).Load(param) : 0;
}
