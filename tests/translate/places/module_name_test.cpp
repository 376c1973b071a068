// White-box: no export shows a module's name.
#include "translate/places/module_name.h"

#include "translate/places/module_copy.h"

#include <gtest/gtest.h>
#include <qxcore/hash.h>

namespace {

std::string NameOf(const void* module) {
    qx::ModuleName name(module);
    return name.Text() ? name.Text() : "(none)";
}

unsigned HashOf(const void* module) {
    return qx::ModuleName(module).Hash().value_or(0);
}

std::string ProgramFile() {
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return strrchr(path, '\\') + 1;
}

}  // namespace

TEST(ModuleNameTest, IsTheFileNameAsItWasSpelledAtTheLoad) {
    ModuleCopy view("View.dll");
    EXPECT_EQ(NameOf(view.Handle()), "View.dll");
    EXPECT_EQ(HashOf(view.Handle()), QXHashText("View.dll").hash);
}

TEST(ModuleNameTest, NullIsTheProgramBeforeAndAfterTheStart) {
    for (int round = 0; round < 2; ++round) {
        for (HMODULE module : {HMODULE(nullptr), GetModuleHandleA(nullptr)}) {
            EXPECT_EQ(NameOf(module), ProgramFile());
            EXPECT_EQ(HashOf(module), QXHashText(ProgramFile().c_str()).hash);
            EXPECT_EQ(qx::ModuleName(module).IsProgram(), round == 1);
        }
        qx::StartModuleNames();
    }
    qx::g_program = nullptr;
}

TEST(ModuleNameTest, AddressesThatAreNoModuleHaveNoNameAndLeaveTheLastError) {
    for (UINT_PTR address :
         {UINT_PTR(1), UINT_PTR(0x10000), ~UINT_PTR(0), UINT_PTR(0xFFFF'FFFF'0000)}) {
        auto module = reinterpret_cast<HMODULE>(address);
        SetLastError(4711);
        EXPECT_EQ(NameOf(module), "(none)") << address;
        EXPECT_FALSE(qx::ModuleName(module).Hash().has_value()) << address;
        EXPECT_FALSE(qx::ModuleName(module).Is("")) << address;
        EXPECT_EQ(GetLastError(), 4711u);
    }
}

TEST(ModuleNameTest, IsComparedWithoutRegardToCaseAndAsAWhole) {
    ModuleCopy view("View.dll");
    EXPECT_TRUE(qx::ModuleName(view.Handle()).Is("vIEW.DLL"));
    for (const char* other : {"view", "view.dl", "view.dlll", "aview.dll", ""})
        EXPECT_FALSE(qx::ModuleName(view.Handle()).Is(other)) << other;
}

TEST(ModuleNameTest, OfAModuleWithLettersBeyondAsciiIsTheNarrowOne) {
    if (GetACP() != 1252) GTEST_SKIP() << "the letter is in code page 1252";
    ModuleCopy module(
        "\xD6"
        "ffnen.dll");
    EXPECT_EQ(NameOf(module.Handle()),
              "\xD6"
              "ffnen.dll");
}

TEST(ModuleNameTest, AnotherModuleAtTheSameAddressHasItsOwnName) {
    HMODULE seen = nullptr;
    int reused = 0;
    for (int i = 0; i < 20; ++i) {
        std::string name = "Module" + std::to_string(i) + ".dll";
        ModuleCopy module(name.c_str());
        reused += module.Handle() == seen;
        seen = module.Handle();
        EXPECT_EQ(NameOf(module.Handle()), name);
    }
    EXPECT_GT(reused, 0) << "the loader never reused an address, so nothing was shown";
}

TEST(LoadedModulesTest, AreFoundAsTheSystemFindsThem) {
    ModuleCopy view("View.dll");
    ModuleCopy other("Other.arx");
    qx::LoadedModules loaded;
    for (const char* name : {"View.dll", "VIEW", "view", "view.dl", "other", "other.arx",
                             "OTHER.ARX", "kernel32", "KERNEL32.dll", "mfc42", "acopm.arx"}) {
        EXPECT_EQ(loaded.Find(name), GetModuleHandleA(name)) << name;
    }
    EXPECT_EQ(loaded.Find("view"), view.Handle());
    EXPECT_EQ(loaded.Find("other.arx"), other.Handle());
}

TEST(ModuleNameTest, AModuleMappedAsADataFileHasNoName) {
    ModuleCopy view("View.dll");
    ScratchDirectory directory;
    char path[MAX_PATH];
    GetModuleFileNameA(view.Handle(), path, MAX_PATH);
    std::string copy = directory.PathOf("Data.dll");
    ASSERT_TRUE(CopyFileA(path, copy.c_str(), TRUE));
    HMODULE data = LoadLibraryExA(copy.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    EXPECT_NE(data, nullptr);
    EXPECT_EQ(NameOf(data), "(none)");
    FreeLibrary(data);
}
