// Names in code page 932, where the second byte of a character may be a backslash. The process runs
// under that page.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"

#include <mbctype.h>

namespace {

class DoubleByteStorageTest : public StorageTest {
protected:
    void SetUp() override {
        ASSERT_EQ(GetACP(), 932u);
        _setmbcp(932);
    }
};

// Two characters whose second byte is 0x5C, and what they are in Unicode.
const std::string kTable = "\x95\x5C", kAbility = "\x94\x5C";
const std::wstring kWideTable = L"\u8868";

}  // namespace

TEST_F(DoubleByteStorageTest, ElementsMayHoldABackslashAsASecondByte) {
    std::string path = Path(kTable + "\\" + kAbility);
    {
        Reference<IXStorage> storage(new_Storage(path.c_str(), 0));
        PutStream(storage.Get(), kTable.c_str(), "a table");
        Reference<IXStorage> child(storage->CreateStorage(kAbility.c_str(), 0));
        PutStream(child.Get(), kTable.c_str(), "within");
    }
    Reference<IXStorage> storage(open_Storage(path.c_str(), 0));
    EXPECT_EQ(storage->GetPath(), path);
    EXPECT_EQ(Names(storage->EnumStreams()), List{kTable});
    EXPECT_EQ(Names(storage->EnumStorages()), List{kAbility});
    EXPECT_EQ(StreamOf(storage.Get(), kTable.c_str()), "a table");
    {
        Reference<IXStorage> child(storage->OpenStorage(kAbility.c_str()));
        EXPECT_EQ(StreamOf(child.Get(), kTable.c_str()), "within");
    }
    EXPECT_EQ(storage->DeleteStream(kTable.c_str()), S_OK);
    EXPECT_EQ(storage->DeleteStorage(kAbility.c_str()), S_OK);
    EXPECT_EQ(Names(storage->EnumStreams()), List{});
}

TEST_F(DoubleByteStorageTest, ABackslashBehindAWholeCharacterIsRefused) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    EXPECT_EQ(storage->CreateStream((kTable + "\\").c_str()), nullptr);
    EXPECT_EQ(Thrown([&] { storage->OpenStorage((kTable + "\\a").c_str()); }),
              "7 0 " + kTable + "\\a");
}

TEST_F(DoubleByteStorageTest, ANameIsCutAfter512CharactersAndNotInOne) {
    FakeStream stream;
    FakeStorage ole;
    ole.stream = &stream;
    Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
    std::string name(511, 'n');
    Reference<IXStream> element(storage->CreateStream((name + kTable + kAbility).c_str()));
    EXPECT_EQ(ole.lastName, std::wstring(511, L'n') + kWideTable);
}

TEST_F(DoubleByteStorageTest, AStreamKeepsTheFirst63BytesOfItsName) {
    FakeStream stream;
    FakeStorage ole;
    ole.stream = &stream;
    Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
    std::string name;
    for (int i = 0; i < 40; ++i) name += kTable;
    Reference<IXStream> element(storage->CreateStream(name.c_str()));
    EXPECT_EQ(element->GetName(), name.substr(0, 63));
}
