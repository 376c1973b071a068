#include "core/module_handle.h"

#include <qxcore/exception.h>

#include <cstring>

namespace qx {

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

// The text is measured before the buffer is written, which it may lie in, and which another thread
// may be writing: each writes its own bytes and never more than the buffer holds.
char* RecordName(const char* text) {
    char* name = FreeName();
    size_t length = text ? strnlen(text, kNameSize - 1) : 0;
    memmove(name, text ? text : "", length);
    name[length] = 0;
    return name;
}

}  // namespace

}  // namespace qx

CXException::CXException(int code) : code(code), module(qx::OwnModule()) {}

CXFileException::CXFileException(int code, const char* name, int operation)
    : CXException(code), name(qx::RecordName(name)), operation(operation) {}
