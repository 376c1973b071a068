// A tree as one line of text, so that a test compares it whole: "X=5:1 a{x=10:abc}" holds the int 1
// and a child.
#ifndef QXCORE_TESTS_PARAM_TREE_TEXT_H
#define QXCORE_TESTS_PARAM_TREE_TEXT_H

#include <qxcore.h>

#include <memory>
#include <string>

using ParamPtr = qx::Reference<IParam>;
using NamesPtr = qx::Reference<CTEnum<const char*>>;

// Type code, colon, value.
std::string ValueText(const tagQXVARIANT& value);
// The names that an enumerator delivers, separated by commas. Takes over its reference.
std::string NamesText(CTEnum<const char*>* names);
// Values first, then children, each in the order of enumeration.
std::string TreeText(IParam* node);

inline void SetInt(IParam* node, const char* name, int value) {
    CQXVariant variant(value);
    node->SetValue(name, &variant);
}
// The int under a name, or -1 where there is none.
inline int GetInt(IParam* node, const char* name) {
    CQXVariant variant;
    return node->GetValue(name, &variant) ? variant.value.intVal : -1;
}

#endif
