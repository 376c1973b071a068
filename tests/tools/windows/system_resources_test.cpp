// The reader of program files against the system's own enumeration of resources, over the modules
// of the system: every resource is there, byte for byte.
#include "tools/qxtranslate/model/pe/resources.h"
#include "tools/qxtranslate/platform/wide_text.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <tuple>

namespace {

using qx::ResourceName;
using Key = std::tuple<ResourceName, ResourceName, uint16_t>;
using Data = std::vector<uint8_t>;
using Table = std::map<Key, Data>;

// Of so many modules one is looked at; QXCORE_ALL_MODULES has all looked at.
constexpr size_t kStep = 24;

ResourceName NameOf(const wchar_t* name) {
    if (IS_INTRESOURCE(name)) return {static_cast<uint32_t>(reinterpret_cast<uintptr_t>(name)), {}};
    std::wstring text(name);
    return {0, std::u16string(text.begin(), text.end())};
}

BOOL CALLBACK OnLanguage(HMODULE module, const wchar_t* type, const wchar_t* name, WORD language,
                         LONG_PTR table) {
    HRSRC found = FindResourceExW(module, type, name, language);
    auto data = static_cast<const uint8_t*>(LockResource(LoadResource(module, found)));
    DWORD size = SizeofResource(module, found);
    (*reinterpret_cast<Table*>(table))[{NameOf(type), NameOf(name), language}] =
        data ? Data(data, data + size) : Data();
    return TRUE;
}
BOOL CALLBACK OnName(HMODULE module, const wchar_t* type, wchar_t* name, LONG_PTR table) {
    EnumResourceLanguagesW(module, type, name, OnLanguage, table);
    return TRUE;
}
BOOL CALLBACK OnType(HMODULE module, wchar_t* type, LONG_PTR table) {
    EnumResourceNamesW(module, type, OnName, table);
    return TRUE;
}

Table OfTheSystem(HMODULE module) {
    Table table;
    EnumResourceTypesW(module, OnType, reinterpret_cast<LONG_PTR>(&table));
    return table;
}

Table OfTheReader(const std::filesystem::path& path) {
    Data bytes(std::filesystem::file_size(path));
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    Table table;
    for (const qx::Resource& r : qx::ReadResources(qx::PeImage(bytes)))
        table[{r.type, r.name, r.language}] = Data(r.data.begin(), r.data.end());
    return table;
}

std::vector<std::filesystem::path> Modules() {
    std::vector<std::filesystem::path> modules;
    wchar_t folder[MAX_PATH] = L"";
    GetSystemDirectoryW(folder, MAX_PATH);
    for (auto& entry : std::filesystem::directory_iterator(folder)) {
        std::wstring extension = entry.path().extension().wstring();
        if (extension == L".dll" || extension == L".exe" || extension == L".cpl")
            modules.push_back(entry.path());
    }
    std::sort(modules.begin(), modules.end());
    return modules;
}

}  // namespace

TEST(SystemResourcesTest, EveryResourceIsReadByteForByte) {
    size_t step = std::getenv("QXCORE_ALL_MODULES") ? 1 : kStep, files = 0, resources = 0;
    std::vector<std::filesystem::path> modules = Modules();
    for (size_t i = 0; i < modules.size(); i += step) {
        HMODULE module = LoadLibraryExW(modules[i].c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        if (!module) continue;
        Table expected = OfTheSystem(module);
        EXPECT_TRUE(OfTheReader(modules[i]) == expected) << modules[i];
        FreeLibrary(module);
        ++files;
        resources += expected.size();
    }
    printf("compared %zu resources of %zu modules\n", resources, files);
    EXPECT_GT(files, modules.size() / step / 2);
    EXPECT_GT(resources, 100u);
}
