// The children of a node that stands over a section, told by the names of the file's sections.
#ifndef QXCORE_PARAM_INI_FILE_CHILD_LIST_H
#define QXCORE_PARAM_INI_FILE_CHILD_LIST_H

namespace qx {

// The names of the direct children, each once and in the order of the file: a block of texts that
// ends with an empty one. `sections` is such a block too. A section far below gives its ancestor
// among the children, also where that has no section of its own.
//
// Not listed are a child whose name would be empty and, at the root, a child of one byte with
// nothing below it.
//
// One block serves all: it holds until the next call.
const char* ListChildren(const char* sections, const char* node, bool isRoot);

}  // namespace qx

#endif
