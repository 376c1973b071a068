// A host that loads the library by hand and lets it go: unload_host SCENARIO FOLDER-OF-MODULES
// DICTIONARY Ends with 0, or with the number of the line that went wrong.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace {

std::string g_folder;
const char* g_dictionary;

#define REQUIRE(condition) \
    if (!(condition)) return __LINE__

struct Library {
    HMODULE handle = LoadLibraryA("qxcore.dll");

    template <class Result, class Argument>
    Result Call(const char* name, Argument argument) const {
        using Function = Result (*)(Argument);
        auto function =
            reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
        return function(argument);
    }
    int Init() const { return Call<int>("Supp_Init", g_dictionary); }
    int Patch(HMODULE module) const { return Call<int>("_InitResTranslation", module); }
    int Restore(HMODULE module) const { return Call<int>("_DeInitResTranslation", module); }
    // Whether it is gone from the process.
    bool Unload() const { return FreeLibrary(handle) && !GetModuleHandleA("qxcore.dll"); }
};

HMODULE LoadModule(const char* name) {
    return LoadLibraryA((g_folder + name).c_str());
}

// The module's string 1 through its own import.
std::string TextOf(HMODULE module) {
    using LoadString = int WINAPI(HINSTANCE, UINT, char*, int);
    auto load = reinterpret_cast<LoadString*>(
        reinterpret_cast<void*>(GetProcAddress(module, "CallLoadStringA")));
    char text[64] = "";
    load(module, 1, text, sizeof text);
    return text;
}

// Its whole road through find, load and size, for a resource. The view of the block has size 0 when
// there is none.
std::string_view LoadBlock(HMODULE module, int name, int type) {
    using Find = HRSRC WINAPI(HMODULE, const char*, const char*);
    using Load = HGLOBAL WINAPI(HMODULE, HRSRC);
    using Size = DWORD WINAPI(HMODULE, HRSRC);
    auto find = reinterpret_cast<Find*>(
        reinterpret_cast<void*>(GetProcAddress(module, "CallFindResourceA")));
    auto load = reinterpret_cast<Load*>(
        reinterpret_cast<void*>(GetProcAddress(module, "CallLoadResource")));
    auto size = reinterpret_cast<Size*>(
        reinterpret_cast<void*>(GetProcAddress(module, "CallSizeofResource")));
    HRSRC found = find(module, MAKEINTRESOURCEA(name), MAKEINTRESOURCEA(type));
    auto block = static_cast<const char*>(load(module, found));
    return block ? std::string_view(block, size(module, found)) : std::string_view();
}

size_t DialogSizeOf(HMODULE module) {
    return LoadBlock(module, 200, 5).size();
}

// Whether some import slot of the module holds this system function.
bool Imports(HMODULE module, const char* function) {
    auto real = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("user32.dll"), function));
    auto base = reinterpret_cast<char*>(module);
    auto headers = reinterpret_cast<IMAGE_NT_HEADERS64*>(
        base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    auto d = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(
        base + headers->OptionalHeader.DataDirectory[1].VirtualAddress);
    for (; d->Name; ++d) {
        for (auto slot = reinterpret_cast<void**>(base + d->FirstThunk); *slot; ++slot) {
            if (*slot == real) return true;
        }
    }
    return false;
}

// The class libraries get their own functions back with the library's unloading.
int ClassLibrariesOutliveTheLibrary() {
    HMODULE first = LoadModule("mfc42.dll");
    HMODULE extra = LoadModule("mfc80u.dll");
    size_t realSize = DialogSizeOf(first);
    Library library;
    REQUIRE(library.Init() == 1);
    REQUIRE(TextOf(first) == "Auf" && TextOf(extra) == "Auf");
    REQUIRE(DialogSizeOf(first) != realSize);
    REQUIRE(library.Unload());
    REQUIRE(TextOf(first) == "Open" && TextOf(extra) == "Open");
    REQUIRE(DialogSizeOf(first) == realSize);
    return 0;
}

// Blocks stay where they are, since a host may still show them.
int BlocksOutliveTheLibrary() {
    HMODULE module = LoadModule("mfc42.dll");
    Library library;
    REQUIRE(library.Init() == 1);
    std::string_view dialog = LoadBlock(module, 200, 5), strings = LoadBlock(module, 1, 6);
    REQUIRE(!dialog.empty() && !strings.empty());
    std::string dialogCopy(dialog), stringsCopy(strings);
    REQUIRE(library.Unload());
    REQUIRE(dialog == dialogCopy && strings == stringsCopy);
    return 0;
}

// Without a dictionary not even a class library gets its imports back.
int ClassLibraryPatchedWithoutADictionary() {
    HMODULE module = LoadModule("mfc42.dll");
    Library library;
    REQUIRE(Imports(module, "LoadStringA"));
    REQUIRE(library.Patch(module) == 1);
    REQUIRE(!Imports(module, "LoadStringA"));
    REQUIRE(library.Unload());
    REQUIRE(!Imports(module, "LoadStringA"));
    return 0;
}

// A module that the host named is the host's to restore.
int HostsModuleOutlivesTheLibrary() {
    HMODULE own = LoadModule("other.dll");
    Library library;
    REQUIRE(library.Init() == 1);
    REQUIRE(library.Patch(own) == 1);
    REQUIRE(TextOf(own) == "Auf");
    REQUIRE(library.Restore(own) == 1);
    REQUIRE(library.Unload());
    REQUIRE(TextOf(own) == "Open");
    return 0;
}

// Class libraries are restored only when a dictionary was read, so without one they are the host's
// too.
int PatchedWithoutADictionary() {
    HMODULE own = LoadModule("mfc42.dll");
    Library library;
    REQUIRE(library.Patch(own) == 1);
    REQUIRE(TextOf(own) == "Open");
    REQUIRE(library.Restore(own) == 1);
    REQUIRE(library.Unload());
    REQUIRE(TextOf(own) == "Open");
    return 0;
}

int ModulesGoBeforeTheLibrary() {
    HMODULE first = LoadModule("mfc42.dll");
    HMODULE second = LoadModule("mfc71.dll");
    HMODULE extra = LoadModule("mfc80u.dll");
    HMODULE own = LoadModule("other.dll");
    Library library;
    REQUIRE(library.Init() == 1);
    REQUIRE(library.Patch(own) == 1);
    REQUIRE(DialogSizeOf(first) != 0 && DialogSizeOf(own) != 0);
    FreeLibrary(own);
    FreeLibrary(first);
    FreeLibrary(extra);
    REQUIRE(TextOf(second) == "Auf");
    REQUIRE(library.Unload());
    REQUIRE(TextOf(second) == "Open");
    return 0;
}

// A second life of the library starts with nothing of the first.
int TheLibraryComesBack() {
    HMODULE module = LoadModule("mfc42.dll");
    for (int round = 0; round < 3; ++round) {
        Library library;
        REQUIRE(TextOf(module) == "Open");
        REQUIRE(library.Init() == 1);
        REQUIRE(TextOf(module) == "Auf");
        REQUIRE(DialogSizeOf(module) != 0);
        REQUIRE(library.Unload());
    }
    REQUIRE(TextOf(module) == "Open");
    return 0;
}

// A host that ends without unloading anything.
int TheProcessEndsPatched() {
    HMODULE module = LoadModule("mfc42.dll");
    Library library;
    REQUIRE(library.Init() == 1);
    REQUIRE(library.Patch(LoadModule("other.dll")) == 1);
    REQUIRE(DialogSizeOf(module) != 0);
    return 0;
}

struct Scenario {
    const char* name;
    int (*run)();
};
constexpr Scenario kScenarios[] = {
    {"ClassLibrariesOutliveTheLibrary", ClassLibrariesOutliveTheLibrary},
    {"BlocksOutliveTheLibrary", BlocksOutliveTheLibrary},
    {"ClassLibraryPatchedWithoutADictionary", ClassLibraryPatchedWithoutADictionary},
    {"HostsModuleOutlivesTheLibrary", HostsModuleOutlivesTheLibrary},
    {"PatchedWithoutADictionary", PatchedWithoutADictionary},
    {"ModulesGoBeforeTheLibrary", ModulesGoBeforeTheLibrary},
    {"TheLibraryComesBack", TheLibraryComesBack},
    {"TheProcessEndsPatched", TheProcessEndsPatched},
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 1;
    g_folder = argv[2];
    g_dictionary = argv[3];
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    for (const Scenario& scenario : kScenarios) {
        if (strcmp(argv[1], scenario.name) == 0) return scenario.run();
    }
    return 2;
}
