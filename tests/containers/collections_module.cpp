#include "containers/collections_module.h"

namespace {

constexpr const char* kNames[] = {"one", "two", "three"};

CTEnum<const char*>* ListNames() {
    auto list = new CTListEnum<const char*>;
    for (auto name : kNames) list->AddTail(name);
    CTEnum<const char*>* names = list->CreateEnum();
    list->Release();
    return names;
}

CTEnum<const char*>* MapNames() {
    auto map = new CTMapEnum<const char*, int>;
    for (auto name : kNames) map->SetAt(name, 0);
    CTEnum<const char*>* names = map->CreateEnum();
    map->Release();
    return names;
}

CTEnum<const char*>* Pieces(const char* text, IQXUnknown* owner) {
    return new _CCharSeparatedStringsEnum<char>(" ", text, owner);
}

unsigned Walk(CTEnum<const char*>* names) {
    names->Reset();
    unsigned walked = 0;
    for (const char* name; names->Next(1, &name, nullptr);) ++walked;
    names->Release();
    return walked;
}

constexpr CollectionsModule kModule = {
    ListNames,
    MapNames,
    Pieces,
    Walk,
    [](IQXUnknown* object) {
        return object->QueryInterface(qx_typeid<CTEnum<const char*>>(), nullptr);
    },
    [] { return new ObjectMap; },
    [](ObjectMap* map, const char* name, IQXUnknown* object) { return map->SetAt(name, object); },
    [](ObjectMap* map) { delete map; },
    [] { return new NameList; },
    [](NameList* list) { delete list; },
};

}  // namespace

extern "C" __declspec(dllexport) const CollectionsModule* Collections() {
    return &kModule;
}
