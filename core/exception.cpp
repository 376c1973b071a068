#include "core/module_handle.h"

#include <qxcore/exception.h>

#include <cstring>

namespace {

constexpr int kNames = 4;
constexpr size_t kNameSize = 512;
constinit char g_names[kNames][kNameSize] = {};

char* FreeName() {
    for (auto& name : g_names) {
        if (!name[0]) return name;
    }
    return g_names[0];
}

char* RecordName(const char* text) {
    char* name = FreeName();
    name[0] = 0;
    if (text) strncat(name, text, kNameSize - 1);
    return name;
}

}  // namespace

CXException::CXException(int code) : code(code), module(OwnModule()) {}

CXFileException::CXFileException(int code, const char* name, int operation)
    : CXException(code), name(RecordName(name)), operation(operation) {}
