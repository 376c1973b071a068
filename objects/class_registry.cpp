#include "objects/class_registry.h"

#include <memory>
#include <new>

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

CXString LastErrorText() {
    char text[260] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   GetLastError(), 0, text, sizeof text, nullptr);
    return CXString(text);
}

}  // namespace

CRegistryEntry::CRegistryEntry(const char* entryName, const char* path) : entryName(entryName) {
    char found[512];
    DWORD length = SearchPathA(nullptr, path, nullptr, sizeof found, found, nullptr);
    if (length == 0 || length >= sizeof found) throw LastErrorText();
    this->path = found;
}

bool CRegistryEntry::Resolve() {
    if (!module) {
        module = LoadLibraryA(path);
        if (!module) return false;
        creator = FindCreator(module, entryName);
    }
    return creator != nullptr;
}

void StartClassRegistry() {
    new (g_classes) ClassMap(kBuckets);
}

void StopClassRegistry() {
    Classes().RemoveAll();
}

int IsRegisterObject(const char* name) {
    return Classes().Find(name) != nullptr;
}

int RegisterObject(const char* name, HINSTANCE module) {
    if (IsRegisterObject(name)) return 1;
    if (Classes().destroyed) return 0;
    QXCreator creator = FindCreator(module, name);
    if (!creator) return 0;
    return AddClass(name, std::make_unique<CRegistryEntry>(module, creator));
}

int RegisterObject(const char* name, const char* path) {
    if (IsRegisterObject(name)) return 1;
    if (Classes().destroyed) return 0;
    try {
        return AddClass(name, std::make_unique<CRegistryEntry>(name, path));
    } catch (const CXString&) {
        return 0;
    }
}

int UnregisterObject(const char* name) {
    return Classes().RemoveKey(name);
}

int CreateObject(const char* name, IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    *out = nullptr;
    CRegistryEntry** found = Classes().Find(name);
    if (!found || !(*found)->Resolve()) return 0;
    return (*found)->creator(outer, id, out);
}

int CreateObjectC(const char* name, IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    return CreateObject(name, outer, id, out);
}
