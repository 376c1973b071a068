// Comparing, copying and listing trees, whatever their back ends are. What a tree nests is walked.
#include "param/memory/value_walk.h"
#include "param/names/walk_stack.h"

#include <qxcore/exception.h>
#include <qxcore/param.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

#include <cassert>

namespace qx {

namespace {

using Names = CTEnum<const char*>;

[[noreturn]] void RaiseMissingNames() {
    throw CXIFaceException(qx_typeid<Names>());
}

Reference<Names> Required(Names* names) {
    if (!names) RaiseMissingNames();
    return Reference<Names>(names);
}

const char* NextName(Names& names) {
    const char* name;
    return names.Next(1, &name, nullptr) ? name : nullptr;
}

// Containment

bool HasEqualValues(IParam& a, IParam& b) {
    ValueWalk ofA(a);
    ValueLookup ofB(b);
    while (ofA.Next()) {
        ofA.Read();
        const tagQXVARIANT* equal = ofB.Find(ofA);
        if (!equal || !(ofA.Value() == equal)) return false;
    }
    return true;
}

bool Contains(Reference<IParam> wholeA, Reference<IParam> wholeB) {
    struct Level {
        Reference<IParam> a, b;
        Reference<Names> children;  // of a
    };
    WalkStack<Level> levels;
    auto enter = [&](Reference<IParam> a, Reference<IParam> b) {
        if (!a || !b || !HasEqualValues(*a.Get(), *b.Get())) return false;
        Reference<Names> children(a->EnumSubParams());
        levels.Push(Level{std::move(a), std::move(b), std::move(children)});
        return true;
    };
    if (!enter(std::move(wholeA), std::move(wholeB))) return false;
    while (Level* level = levels.Top()) {
        const char* name = level->children ? NextName(*level->children.Get()) : nullptr;
        if (!name) {
            levels.Pop();
            continue;
        }
        Reference<IParam> a(level->a->OpenSubParam(name, 0));
        Reference<IParam> b(level->b->OpenSubParam(name, 0));
        if (!enter(std::move(a), std::move(b))) return false;
    }
    return true;
}

// Copying

struct CopyLevel {
    Reference<IParam> source, target;
    Reference<Names> children;  // of the source

    CopyLevel(Reference<IParam> from, Reference<IParam> to)
        : source(std::move(from)),
          target(std::move(to)),
          children(Required(source->EnumSubParams())) {}
};

void CopyValues(IParam& source, IParam& target) {
    ValueWalk values(source);
    if (!values.HasNames()) RaiseMissingNames();
    CMemParam* memory = CMemParam::Of(&target);
    while (const char* name = values.Next()) {
        values.Read();
        const NamedItem* like = memory ? values.Borrowed() : nullptr;
        if (like) {
            memory->SetValueLike(*like, values.Value());
        } else {
            target.SetValue(name, &values.Value());
        }
    }
}

Reference<IParam> OpenOrCreate(IParam& node, const char* name) {
    Reference<IParam> child(node.OpenSubParam(name, 0));
    return child ? child : Reference<IParam>(node.CreateSubParam(name));
}

void CopyTree(Reference<IParam> source, Reference<IParam> target) {
    WalkStack<CopyLevel> levels;
    levels.Push(std::move(source), std::move(target));
    while (CopyLevel* level = levels.Top()) {
        const char* name = NextName(*level->children.Get());
        if (!name) {
            CopyValues(*level->source.Get(), *level->target.Get());
            levels.Pop();
            continue;
        }
        Reference<IParam> from(level->source->OpenSubParam(name, 0));
        if (!from) continue;
        if (Reference<IParam> to = OpenOrCreate(*level->target.Get(), name))
            levels.Push(std::move(from), std::move(to));
    }
}

// Listing

void Say(const char* format, const char* name) {
    CXString line;
    line.Format(format, name);
    OutputDebugStringA(line);
}

struct DumpLevel {
    Reference<IParam> node;
    Reference<Names> children;

    // The node's values are listed first.
    explicit DumpLevel(Reference<IParam> listed) : node(std::move(listed)) {
        Reference<Names> values = Required(node->EnumValues());
        while (const char* name = NextName(*values.Get())) Say(" %s \n", name);
        children = Required(node->EnumSubParams());
    }
};

void DumpTree(Reference<IParam> node) {
    WalkStack<DumpLevel> levels;
    levels.Push(std::move(node));
    while (DumpLevel* level = levels.Top()) {
        const char* name = NextName(*level->children.Get());
        if (!name) {
            levels.Pop();
            continue;
        }
        Reference<IParam> child(level->node->OpenSubParam(name, 0));
        Say("--- %s ---\n", name);
        if (child) levels.Push(std::move(child));
    }
}

}  // namespace

}  // namespace qx

int Param_Cmp(IParam* a, IParam* b) {
    return qx::Contains(qx::Hold(a), qx::Hold(b));
}

void Param_CopyTo(IParam* source, IParam* target) {
    assert(source && target);
    qx::CopyTree(qx::Hold(source), qx::Hold(target));
}

void Dump_Param(IParam* param) {
    assert(param);
    qx::DumpTree(qx::Hold(param));
}
