// Names of elements: what is refused before the platform sees it, and what is cut.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"

namespace {

const char* const kRefused[] = {"", "a\\b", "a/b", "a:b", "a!b", "\\", "/", ":", "!", "trailing\\"};

// A storage over a fake that takes any name.
struct FakeNames {
    FakeNames() {
        ole.stream = &stream;
        ole.child = &child;
        storage = Reference<IXStorage>(new_StorageByOleStorage(&ole));
    }
    FakeStream stream;
    FakeStorage ole, child;
    Reference<IXStorage> storage;
};

}  // namespace

TEST_F(StorageTest, RefusedNamesGiveNoStream) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    for (const char* name : kRefused) {
        EXPECT_EQ(storage->CreateStream(name), nullptr) << name;
        EXPECT_EQ(storage->OpenStream(name), nullptr) << name;
    }
    EXPECT_EQ(Names(storage->EnumStreams()), List{});
}

TEST_F(StorageTest, RefusedNamesOfStoragesAreCode7) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    for (const char* name : kRefused) {
        EXPECT_EQ(Thrown([&] { storage->CreateStorage(name, 0); }), std::string("7 0 ") + name);
        EXPECT_EQ(Thrown([&] { storage->OpenStorage(name); }), std::string("7 0 ") + name);
        EXPECT_EQ(Thrown([&] { storage->DeleteStorage(name); }), "7 4 ");
        EXPECT_EQ(Thrown([&] { storage->DeleteStream(name); }), "7 4 ");
    }
    EXPECT_EQ(Names(storage->EnumStorages()), List{});
}

TEST(StorageNameTest, RefusedNamesNeverReachThePlatform) {
    FakeNames fake;
    for (const char* name : kRefused) {
        EXPECT_EQ(fake.storage->CreateStream(name), nullptr);
        EXPECT_EQ(fake.storage->OpenStream(name), nullptr);
        EXPECT_EQ(Thrown([&] { fake.storage->CreateStorage(name, 0); }),
                  std::string("7 0 ") + name);
        EXPECT_EQ(Thrown([&] { fake.storage->OpenStorage(name); }), std::string("7 0 ") + name);
        EXPECT_EQ(Thrown([&] { fake.storage->DeleteStream(name); }), "7 4 ");
        EXPECT_EQ(fake.ole.lastName, L"");
    }
}

TEST(StorageNameTest, ANullNameIsRefusedAsAnEmptyOne) {
    FakeNames fake;
    EXPECT_EQ(fake.storage->CreateStream(nullptr), nullptr);
    EXPECT_EQ(Thrown([&] { fake.storage->OpenStorage(nullptr); }), "7 0 ");
}

TEST_F(StorageTest, ControlCharactersAndPunctuationAreNames) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    for (const char* name : {"\005Special", "@", "a.b", "a b", "~#$%&'()+,-;=[]^_`{}", "*?\"<>|"}) {
        PutStream(storage.Get(), name, name);
        EXPECT_EQ(StreamOf(storage.Get(), name), name);
    }
}

// The platform takes 31 characters.
TEST_F(StorageTest, ANameOf31CharactersFitsAndOneOf32DoesNot) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    std::string fits(31, 'a'), tooLong(32, 'a'), farTooLong(70, 'a');
    PutStream(storage.Get(), fits.c_str(), "1");
    EXPECT_EQ(StreamOf(storage.Get(), fits.c_str()), "1");
    for (const std::string& name : {tooLong, farTooLong}) {
        EXPECT_EQ(storage->CreateStream(name.c_str()), nullptr);
        EXPECT_EQ(Thrown([&] { storage->CreateStorage(name.c_str(), 0); }), "7 0 " + name);
    }
    EXPECT_EQ(Names(storage->EnumStreams()), List{fits});
}

TEST(StorageNameTest, ANameIsCutAfter512Characters) {
    FakeNames fake;
    std::string name(511, 'n');
    for (const char* end : {"", "x", "xy", "xyz and a long rest"}) {
        std::string whole = name + end;
        Reference<IXStream> stream(fake.storage->CreateStream(whole.c_str()));
        EXPECT_EQ(fake.ole.lastName, Widen(whole.substr(0, 512)));
    }
}

TEST(StorageNameTest, AForbiddenCharacterBehindTheCutIsNotSeen) {
    FakeNames fake;
    std::string name = std::string(512, 'n') + "\\";
    Reference<IXStream> stream(fake.storage->CreateStream(name.c_str()));
    EXPECT_NE(stream.Get(), nullptr);
    EXPECT_EQ(fake.ole.lastName, std::wstring(512, L'n'));
}

TEST(StorageNameTest, AShortNameAfterALongOneHasNoRest) {
    FakeNames fake;
    Reference<IXStream> first(fake.storage->CreateStream(std::string(400, 'n').c_str()));
    Reference<IXStream> second(fake.storage->CreateStream("b"));
    EXPECT_EQ(fake.ole.lastName, L"b");
}
