// A look at every value and child of a tree that broken input made.
#ifndef QXCORE_TESTS_PARAM_WALK_H
#define QXCORE_TESTS_PARAM_WALK_H

#include <qxcore.h>

#include <string>
#include <vector>

// Calls `visit` with each node, at most so many, and answers how many it were. A tree may be deeper
// than a stack, so the nodes stand in a list.
template <class Visit>
unsigned EachNode(IParam* root, unsigned most, Visit visit) {
    std::vector<qx::Reference<IParam>> nodes = {qx::Hold(root)};
    unsigned seen = 0;
    while (!nodes.empty() && seen < most) {
        qx::Reference<IParam> node = std::move(nodes.back());
        nodes.pop_back();
        ++seen;
        visit(node.Get());
        qx::Reference<CTEnum<const char*>> children(node->EnumSubParams());
        const char* name;
        while (children && children->Next(1, &name, nullptr)) {
            qx::Reference<IParam> child(node->OpenSubParam(name, 0));
            if (child) nodes.push_back(std::move(child));
        }
    }
    return seen;
}

inline unsigned ReadValues(IParam* node) {
    qx::Reference<CTEnum<const char*>> names(node->EnumValues());
    unsigned read = 0;
    const char* name;
    while (names && names->Next(1, &name, nullptr)) {
        CQXVariant value;
        read += node->GetValue(name, &value) != 0;
    }
    return read;
}

// Values that were read, in the first nodes of the tree.
inline unsigned ReadTree(IParam* root) {
    unsigned read = 0;
    EachNode(root, 1000, [&](IParam* node) { read += ReadValues(node); });
    return read;
}

#endif
