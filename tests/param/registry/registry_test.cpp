// Trees over keys of the registry: opening, walking, and keys that others change.
#include "param/registry/registry_key.h"
#include "param/small_stack.h"
#include "param/tree_text.h"
#include "support/import_slot.h"

#include <gtest/gtest.h>

namespace {

class RegistryTest : public testing::Test {
protected:
    TestKey key;
    ParamPtr root{new_IParamCUReg(key.Path().c_str())};

    ParamPtr Create(const std::string& name) {
        return ParamPtr(root->CreateSubParam(name.c_str()));
    }
    ParamPtr Open(const std::string& name, int create = 0) {
        return ParamPtr(root->OpenSubParam(name.c_str(), create));
    }
};

DWORD OpenHandles() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

LSTATUS WINAPI Refuse(HKEY, LPCSTR, DWORD, REGSAM, PHKEY) {
    return ERROR_ACCESS_DENIED;
}

}  // namespace

TEST_F(RegistryTest, AMissingKeyGivesNullAndIsNotMade) {
    std::string missing = key.Path() + "\\missing";
    EXPECT_EQ(new_IParamCUReg(missing.c_str()), nullptr);
    EXPECT_EQ(new_IParamLMReg(missing.c_str()), nullptr);
    EXPECT_FALSE(key.Has("missing"));
}

TEST_F(RegistryTest, TheTwoHivesAreTheCurrentUserAndTheMachine) {
    TestKey machine(HKEY_LOCAL_MACHINE);
    ParamPtr other(new_IParamLMReg(machine.Path().c_str()));
    ASSERT_TRUE(other);
    SetInt(other.Get(), "v", 1);
    EXPECT_EQ(machine.Get("v"), "3:0500000001000000");
    EXPECT_EQ(new_IParamCUReg(machine.Path().c_str()), nullptr);
}

TEST_F(RegistryTest, KeysAreOpenedForFullAccess) {
    static REGSAM asked;
    static decltype(&RegOpenKeyExA) real;
    asked = 0;
    auto spy = [](HKEY above, LPCSTR name, DWORD options, REGSAM access, PHKEY out) -> LSTATUS {
        asked = access;
        return real(above, name, options, access, out);
    };
    ReplacedImport replaced("RegOpenKeyExA",
                            reinterpret_cast<void*>(static_cast<decltype(&RegOpenKeyExA)>(spy)));
    ASSERT_TRUE(replaced);
    real = reinterpret_cast<decltype(real)>(replaced.Real());
    ParamPtr(new_IParamCUReg(key.Path().c_str()));
    EXPECT_EQ(asked, 0xF003Fu);
}

TEST_F(RegistryTest, AKeyWithoutFullAccessIsNotThere) {
    SetInt(Create("a").Get(), "v", 1);
    ReplacedImport refused("RegOpenKeyExA", reinterpret_cast<void*>(&Refuse));
    ASSERT_TRUE(refused);
    EXPECT_EQ(new_IParamCUReg(key.Path().c_str()), nullptr);
    EXPECT_FALSE(Open("a"));
    root->DeleteSubParam("a");
    root->DeleteAllSubParams();
    root->Clear();
    EXPECT_TRUE(key.Has("a"));
    EXPECT_EQ(NamesText(root->EnumSubParams()), "a");
}

TEST_F(RegistryTest, ANodeWhoseHandleMayOnlyReadAnswersAsItsContract) {
    auto reading = [](HKEY above, LPCSTR name, DWORD options, REGSAM, PHKEY out) -> LSTATUS {
        return RegOpenKeyExA(above, name, options, KEY_READ, out);
    };
    Create("a");
    SetInt(root.Get(), "v", 1);
    ParamPtr reader;
    {
        ReplacedImport replaced(
            "RegOpenKeyExA",
            reinterpret_cast<void*>(static_cast<decltype(&RegOpenKeyExA)>(reading)));
        reader = ParamPtr(new_IParamCUReg(key.Path().c_str()));
    }
    ASSERT_TRUE(reader);
    CQXVariant two(2);
    EXPECT_EQ(GetInt(reader.Get(), "v"), 1);
    EXPECT_EQ(reader->SetValue("v", &two), 1);  // whatever the platform said
    EXPECT_EQ(GetInt(reader.Get(), "v"), 1);
    EXPECT_EQ(reader->DeleteValue("v"), ERROR_ACCESS_DENIED);
    reader->DeleteAllValues();
    reader->Clear();
    EXPECT_EQ(TreeText(root.Get()), "v=5:1 a{}");
}

TEST_F(RegistryTest, TwoOpensOfAChildAreTwoObjectsThatSeeEachOthersWrites) {
    ParamPtr first = Create("a"), second = Open("A");
    ASSERT_NE(first.Get(), second.Get());
    SetInt(first.Get(), "v", 1);
    EXPECT_EQ(GetInt(second.Get(), "v"), 1);
}

TEST_F(RegistryTest, APathIsThePlatforms) {
    SetInt(Create("a\\b\\c").Get(), "v", 1);
    EXPECT_TRUE(key.Has("a\\b\\c"));
    EXPECT_TRUE(Open("a\\b"));
    SetInt(root.Get(), "a\\b", 2);
    EXPECT_EQ(key.Get("a\\b"), "3:0500000002000000");
    EXPECT_EQ(NamesText(root->EnumValues()), "a\\b");
}

TEST_F(RegistryTest, DeletingAChildRemovesADeepSubtreeWhole) {
    for (const char* name : {"a\\b\\c", "a\\b\\d", "a\\e", "kept\\a"})
        SetInt(Create(name).Get(), "v", 1);
    SetInt(Open("a").Get(), "v", 1);
    root->DeleteSubParam("a");
    EXPECT_FALSE(key.Has("a"));
    EXPECT_TRUE(key.Has("kept\\a"));
}

TEST_F(RegistryTest, ClearLeavesTheSubkeysEmpty) {
    for (const char* name : {"a\\b\\c", "d"}) SetInt(Create(name).Get(), "v", 1);
    SetInt(root.Get(), "v", 1);
    root->Clear();
    EXPECT_EQ(TreeText(root.Get()), "a{b{c{}}} d{}");
}

TEST_F(RegistryTest, CreatingAnExistingChildEmptiesItAndLeavesItsSubkeys) {
    SetInt(Create("a\\b").Get(), "v", 1);
    ParamPtr again = Create("a");
    EXPECT_EQ(TreeText(again.Get()), "b{}");
}

TEST_F(RegistryTest, KeysOfManyLevelsAreWalked) {
    constexpr int kSteps = 50;
    for (const char* name : {"cleared", "deleted"}) {
        ParamPtr node = Create(name);
        for (int i = 0; i < kSteps; ++i) {
            node = ParamPtr(node->CreateSubParam("a\\a\\a\\a"));
            ASSERT_TRUE(node) << i;
            SetInt(node.Get(), "v", 1);
        }
    }
    OnSmallStack([&] {
        Open("cleared")->Clear();
        root->DeleteSubParam("deleted");
    });
    EXPECT_EQ(NamesText(root->EnumSubParams()), "cleared");
    ParamPtr node = Open("cleared");
    for (int i = 0; i < kSteps; ++i) {
        node = ParamPtr(node->OpenSubParam("a\\a\\a\\a", 0));
        ASSERT_TRUE(node) << i;
        EXPECT_EQ(NamesText(node->EnumValues()), "");
    }
    OnSmallStack([&] { root->DeleteAllSubParams(); });
    EXPECT_EQ(NamesText(root->EnumSubParams()), "");
}

TEST_F(RegistryTest, ANodeOfADeletedKeyAnswersThatThereIsNothing) {
    ParamPtr child = Create("a");
    SetInt(child.Get(), "v", 1);
    ASSERT_EQ(RegDeleteKeyA(key.Raw(), "a"), ERROR_SUCCESS);
    CQXVariant out("old"), value(2), text("text");
    EXPECT_EQ(child->GetValue("v", &out), 0);
    EXPECT_EQ(out.type, QXVT_EMPTY);
    child->SetValue("v", &value);
    child->SetValue("v", &text);
    EXPECT_FALSE(ParamPtr(child->CreateSubParam("b")));
    EXPECT_FALSE(ParamPtr(child->OpenSubParam("b", 1)));
    EXPECT_EQ(NamesText(child->EnumValues()), "");
    EXPECT_EQ(NamesText(child->EnumSubParams()), "");
    child->DeleteSubParam("b");
    child->DeleteAllSubParams();
    EXPECT_NE(child->DeleteValue("v"), ERROR_SUCCESS);
    child->DeleteAllValues();
    child->Clear();
    EXPECT_FALSE(key.Has("a"));
}

TEST_F(RegistryTest, NamesOf255CharactersAreNames) {
    std::string longest(255, 'n');
    SetInt(Create(longest).Get(), longest.c_str(), 1);
    EXPECT_EQ(TreeText(root.Get()), longest + "{" + longest + "=5:1}");
    root->DeleteSubParam(longest.c_str());
    EXPECT_EQ(TreeText(root.Get()), "");
}

// The platform would take it for one whose length is the same modulo 65536.
TEST_F(RegistryTest, ANameOfMoreBytesThanThePlatformCountsIsNone) {
    std::string name(65536 + 5, 'n');
    SetInt(Create("nnnnn").Get(), "v", 1);
    SetInt(root.Get(), "nnnnn", 2);
    CQXVariant value(3), out("old");
    EXPECT_EQ(root->SetValue(name.c_str(), &value), 1);
    EXPECT_EQ(root->GetValue(name.c_str(), &out), 0);
    EXPECT_EQ(out.type, QXVT_EMPTY);
    EXPECT_NE(root->DeleteValue(name.c_str()), ERROR_SUCCESS);
    EXPECT_FALSE(Open(name, 1));
    EXPECT_FALSE(Create(name));
    root->DeleteSubParam(name.c_str());
    EXPECT_EQ(TreeText(root.Get()), "nnnnn=5:2 nnnnn{v=5:1}");
    EXPECT_EQ(new_IParamCUReg((key.Path() + std::string(65536, 'n')).c_str()), nullptr);
}

TEST_F(RegistryTest, AListOfValuesEndsAtANameOfMoreThan512Characters) {
    std::string longest(512, 'n'), longer(513, 'o');
    SetInt(root.Get(), longest.c_str(), 1);
    EXPECT_EQ(NamesText(root->EnumValues()), longest);
    SetInt(root.Get(), longer.c_str(), 2);
    EXPECT_EQ(GetInt(root.Get(), longer.c_str()), 2);
    std::string listed = NamesText(root->EnumValues());
    EXPECT_EQ(listed.find(longer), std::string::npos);
}

TEST_F(RegistryTest, ASnapshotIsSafeAgainstChangesAndOutlivesItsNode) {
    for (const char* name : {"a", "b", "c"}) SetInt(root.Get(), name, 1);
    NamesPtr names(root->EnumValues());
    SetInt(root.Get(), "d", 1);
    root->DeleteAllValues();
    root.Release();
    EXPECT_EQ(NamesText(names.Detach()), "a,b,c");
}

TEST_F(RegistryTest, ASnapshotHoldsThousandsOfNames) {
    constexpr unsigned kNames = 10000;
    for (unsigned i = 0; i < kNames; ++i) {
        std::string name = std::to_string(i);
        RegSetValueExA(key.Raw(), name.c_str(), 0, REG_BINARY, nullptr, 0);
    }
    NamesPtr names(root->EnumValues());
    std::vector<const char*> all(kNames + 1);
    unsigned fetched = 0;
    EXPECT_EQ(names->Next(kNames + 1, all.data(), &fetched), 1);
    ASSERT_EQ(fetched, kNames);
    EXPECT_EQ(names->Next(1, all.data(), &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    names->Reset();
    EXPECT_EQ(names->Skip(kNames - 1), 1);
    EXPECT_EQ(names->Next(5, all.data(), &fetched), 1);
    EXPECT_EQ(fetched, 1u);
}

TEST_F(RegistryTest, ASnapshotSkipsWithoutACheckAndDeliversNothingWithoutAPlace) {
    for (const char* name : {"a", "b"}) SetInt(root.Get(), name, 1);
    NamesPtr names(root->EnumValues());
    const char* name = nullptr;
    EXPECT_EQ(names->Next(1, nullptr, nullptr), 0);
    EXPECT_EQ(names->Next(1, &name, nullptr), 1);
    EXPECT_STREQ(name, "a");  // the call without a place moved nothing on
    EXPECT_EQ(names->Skip(1000), 1);
    EXPECT_EQ(names->Next(1, &name, nullptr), 0);
    EXPECT_EQ(names->Skip(0xFFFFFFFFu - 999), 1);  // the position is a 32-bit number
    EXPECT_EQ(names->Next(1, &name, nullptr), 1);
    EXPECT_STREQ(name, "b");
}

// It is listed by an empty name, which ends the values of a node in a stream. In the other places
// it is "@".
TEST_F(RegistryTest, TheDefaultValueOfAKeyEndsTheValuesOfItsNodeInAStream) {
    SetInt(root.Get(), nullptr, 7);
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.Get(), root.Get()), 1);
    EXPECT_EQ(stream->GetLength(), 1 + 1 + 6 + 1);
    stream->Seek(0, QXSEEK_START);
    ParamPtr loaded(new_MemParam()), copied(new_MemParam());
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), loaded.Get()), 1);
    EXPECT_EQ(TreeText(loaded.Get()), "");
    EXPECT_EQ(stream->Tell(), 2);
    Param_CopyTo(root.Get(), copied.Get());
    EXPECT_EQ(TreeText(copied.Get()), "@=5:7");
}

TEST_F(RegistryTest, QueryInterfaceAnswersTheNodeForIParam) {
    IQXUnknown* out = nullptr;
    ASSERT_EQ(root->QueryInterface(qx_typeid<IParam>(), &out), 1);
    EXPECT_EQ(static_cast<IParam*>(out), root.Get());
    EXPECT_EQ(out->Release(), 1u);
}

TEST_F(RegistryTest, NothingStaysOpen) {
    SetInt(Create("a\\b\\c").Get(), "v", 1);
    root->DeleteAllSubParams();
    DWORD before = OpenHandles();
    for (int i = 0; i < 20; ++i) {
        SetInt(Create("a\\b\\c").Get(), "v", 1);
        Create("a\\b");
        Open("a", 1);
        Open("missing");
        NamesText(Open("a")->EnumSubParams());
        Open("a")->Clear();
        root->DeleteSubParam("a");
        ParamPtr(new_IParamCUReg(key.Path().c_str()));
    }
    EXPECT_EQ(OpenHandles(), before);
}
