// White-box: no export shows a module's name.
#include "translate/places/module_name.h"

#include "translate/places/module_copy.h"

#include <gtest/gtest.h>
#include <qxcore/hash.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace {

std::string NameOf(const void* module) {
    qx::ModuleName name(module);
    return name.Text() ? name.Text() : "(none)";
}

unsigned LifeOf(const void* module) {
    return qx::ModuleName(module).Life();
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

// Names are asked for anew before the start, and known from their first use on after it.
class KnownNameTest : public testing::TestWithParam<DWORD> {
protected:
    void SetUp() override { qx::StartModuleNames(); }
    void TearDown() override { qx::g_program = nullptr; }
};
INSTANTIATE_TEST_SUITE_P(Loads, KnownNameTest, testing::Values(0u, DONT_RESOLVE_DLL_REFERENCES));

TEST_P(KnownNameTest, AnotherModuleAtTheSameAddressHasItsOwnName) {
    HMODULE seen = nullptr;
    int reused = 0;
    for (int i = 0; i < 12; ++i) {
        // Of one length, and some of them come back.
        std::string name = "Module" + std::to_string(i * 7 % 10) + ".dll";
        ModuleCopy module(name.c_str(), GetParam());
        reused += module.Handle() == seen;
        seen = module.Handle();
        for (int again = 0; again < 3; ++again) EXPECT_EQ(NameOf(module.Handle()), name);
    }
    EXPECT_EQ(NameOf(seen), "(none)") << "the last module is gone";
    EXPECT_GT(reused, 0) << "the loader never reused an address, so nothing was shown";
}

TEST_P(KnownNameTest, ModulesOfOneNameInTwoFoldersAreBothKnown) {
    ModuleCopy first("View.dll", GetParam()), second("VIEW.dll", GetParam());
    for (int again = 0; again < 3; ++again) {
        EXPECT_EQ(NameOf(first.Handle()), "View.dll");
        EXPECT_EQ(NameOf(second.Handle()), "VIEW.dll");
    }
}

TEST_P(KnownNameTest, NamesAreRightInEveryThreadWhileModulesComeAndGo) {
    ModuleCopy stays("Stays.dll", GetParam());
    std::atomic<bool> done = false;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            while (!done) wrong += NameOf(stays.Handle()) != "Stays.dll";
        });
    }
    for (int i = 0; i < 8; ++i) {
        std::string name = "Goes" + std::to_string(i) + ".dll";
        ModuleCopy goes(name.c_str(), GetParam());
        EXPECT_EQ(NameOf(goes.Handle()), name);
    }
    done = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_P(KnownNameTest, AnUnmarkedModuleHasNoLifeOfItsOwn) {
    ModuleCopy view("View.dll", GetParam());
    for (int again = 0; again < 2; ++again) EXPECT_EQ(LifeOf(view.Handle()), 0u);
}

TEST_P(KnownNameTest, AMarkedModuleIsToldFromAllThatComeToItsAddress) {
    std::set<unsigned> lives;
    for (int i = 0; i < 5; ++i) {
        ModuleCopy view("View.dll", GetParam());
        EXPECT_EQ(LifeOf(view.Handle()), 0u) << "the mark went with the module before";
        void** slot = view.Slot();
        void* before = *slot;
        *slot = &lives;
        qx::MarkModule(view.Handle(), "View.dll", slot, &lives);
        unsigned life = LifeOf(view.Handle());
        EXPECT_EQ(LifeOf(view.Handle()), life);
        EXPECT_EQ(NameOf(view.Handle()), "View.dll");
        EXPECT_TRUE(lives.insert(life).second) << life;
        *slot = before;
        EXPECT_EQ(LifeOf(view.Handle()), 0u) << "the mark is gone";
        *slot = &lives;
        EXPECT_EQ(LifeOf(view.Handle()), life);
        qx::UnmarkModule(view.Handle());
        EXPECT_EQ(LifeOf(view.Handle()), 0u);
        qx::MarkModule(view.Handle(), "View.dll", slot, &lives);
    }
    EXPECT_FALSE(lives.contains(0));
    EXPECT_FALSE(lives.contains(qx::kLifeOfProgram));
}

TEST_P(KnownNameTest, TheProgramsLifeIsKnownAndNobodyElses) {
    EXPECT_EQ(LifeOf(nullptr), qx::kLifeOfProgram);
    EXPECT_EQ(LifeOf(GetModuleHandleA(nullptr)), qx::kLifeOfProgram);
    EXPECT_EQ(LifeOf(GetModuleHandleA("kernel32.dll")), 0u);
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
