// White-box: the program links the source itself, since no export shows what is kept.
#include "translate/places/module_name.h"

#include "translate/places/loaded_modules.h"
#include "translate/module_copy.h"

#include <gtest/gtest.h>
#include <qxcore/hash.h>

#include <memory>

class ModuleNameTest : public testing::Test {
protected:
    ModuleNameTest() { StartModuleWatch(); }
    ~ModuleNameTest() override { StopModuleWatch(); }
};

TEST_F(ModuleNameTest, HashIsThatOfTheFileName) {
    ModuleCopy view("View.dll");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(QXHashText("View.dll").hash, ModuleNameHash(view.Handle()));
}

TEST_F(ModuleNameTest, NullIsTheProgram) {
    EXPECT_EQ(ModuleNameHash(GetModuleHandleA(nullptr)), ModuleNameHash(nullptr));
    EXPECT_TRUE(ModuleNameHash(nullptr).has_value());
}

TEST_F(ModuleNameTest, AddressesThatAreNoModuleHaveNoName) {
    for (UINT_PTR address :
         {UINT_PTR(1), UINT_PTR(0x10000), ~UINT_PTR(0), UINT_PTR(0xFFFF'FFFF'0000)}) {
        EXPECT_FALSE(ModuleNameHash(reinterpret_cast<HMODULE>(address)).has_value()) << address;
    }
}

TEST_F(ModuleNameTest, AnotherModuleAtTheSameAddressHasItsOwnName) {
    HMODULE seen = nullptr;
    int reused = 0;
    for (int i = 0; i < 20; ++i) {
        std::string name = "Module" + std::to_string(i) + ".dll";
        ModuleCopy module(name.c_str());
        reused += module.Handle() == seen;
        seen = module.Handle();
        EXPECT_EQ(QXHashText(name.c_str()).hash, ModuleNameHash(module.Handle())) << name;
    }
    EXPECT_GT(reused, 0) << "the loader never reused an address, so nothing was shown";
}

TEST_F(ModuleNameTest, ManyModulesKeepTheirNamesApart) {
    std::vector<std::unique_ptr<ModuleCopy>> modules;
    std::vector<std::string> names;
    for (int i = 0; i < 70; ++i) {
        names.push_back("M" + std::to_string(i) + ".dll");
        modules.push_back(std::make_unique<ModuleCopy>(names.back().c_str()));
    }
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 70; ++i) {
            EXPECT_EQ(QXHashText(names[i].c_str()).hash, ModuleNameHash(modules[i]->Handle()))
                << names[i];
        }
    }
}

TEST(ModuleNameWithoutWatch, NamesAreAskedForEachTime) {
    for (int i = 0; i < 5; ++i) {
        std::string name = "Plain" + std::to_string(i) + ".dll";
        ModuleCopy module(name.c_str());
        EXPECT_EQ(QXHashText(name.c_str()).hash, ModuleNameHash(module.Handle()));
    }
}
