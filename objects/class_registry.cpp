#include "objects/class_registry.h"

#include <cstring>
#include <memory>
#include <new>

namespace qx {

namespace {

using ClassMap = CTMap<const char*, CRegistryEntry*>;

constexpr unsigned kBuckets = 1397;

// Made at start-up, cleared for good at shut-down and never destructed.
alignas(ClassMap) constinit unsigned char g_classes[sizeof(ClassMap)] = {};

ClassMap& Classes() {
    return *std::launder(reinterpret_cast<ClassMap*>(g_classes));
}

int AddClass(const char* name, std::unique_ptr<CRegistryEntry> entry) {
    int added = Classes().SetAt(name, entry.get());
    if (added) entry.release();
    return added;
}

QXCreator FindCreator(HINSTANCE module, const char* name) {
    return reinterpret_cast<QXCreator>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// The full name of a module file by the system's search order. False if there is none, or a longer
// one than a module is loaded from.
bool FindModuleFile(const char* path, CXString& found) {
    char buffer[512];
    DWORD length = SearchPathA(nullptr, path, nullptr, sizeof buffer, buffer, nullptr);
    if (length == 0 || length >= sizeof buffer) return false;
    found = buffer;
    return true;
}

CRegistryEntry* FindClass(const char* name) {
    CRegistryEntry** entry = Classes().Find(name);
    return entry ? *entry : nullptr;
}

// Loads the module of a class. False if it cannot be loaded; the next call tries again.
bool LoadModuleOf(const char* name, const CRegistryEntry& entry) {
    // A module that starts may forget and register classes, this one among them: what is needed is
    // copied first, and the entry is looked for anew.
    CXString path(entry.path), entryName(entry.entryName);
    HINSTANCE module = LoadLibraryA(path);
    if (!module) return false;
    QXCreator creator = FindCreator(module, entryName);
    CRegistryEntry* present = FindClass(name);
    if (present && !present->module && strcmp(present->path, path) == 0) {
        present->module = module;
        present->creator = creator;
    }
    return true;
}

// The creator of a class, or null. An entry point that was missing is not looked for again.
QXCreator CreatorOf(const char* name) {
    while (CRegistryEntry* entry = FindClass(name)) {
        if (entry->module) return entry->creator;
        if (!LoadModuleOf(name, *entry)) return nullptr;
    }
    return nullptr;
}

}  // namespace

void StartClassRegistry() {
    new (g_classes) ClassMap(kBuckets);
}

void StopClassRegistry() {
    Classes().RemoveAll();
}

}  // namespace qx

int IsRegisterObject(const char* name) {
    return qx::FindClass(name) != nullptr;
}

int RegisterObject(const char* name, HINSTANCE module) {
    if (IsRegisterObject(name)) return 1;
    if (qx::Classes().destroyed) return 0;
    QXCreator creator = qx::FindCreator(module, name);
    if (!creator) return 0;
    return qx::AddClass(name, std::make_unique<qx::CRegistryEntry>(module, creator));
}

int RegisterObject(const char* name, const char* path) {
    if (IsRegisterObject(name)) return 1;
    if (qx::Classes().destroyed) return 0;
    CXString found;
    if (!qx::FindModuleFile(path, found)) return 0;
    return qx::AddClass(name, std::make_unique<qx::CRegistryEntry>(name, found));
}

int UnregisterObject(const char* name) {
    return qx::Classes().RemoveKey(name);
}

int CreateObject(const char* name, IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    *out = nullptr;
    QXCreator creator = qx::CreatorOf(name);
    int made = creator ? creator(outer, id, out) : 0;
    if (!made) *out = nullptr;
    return made;
}

int CreateObjectC(const char* name, IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    return CreateObject(name, outer, id, out);
}
