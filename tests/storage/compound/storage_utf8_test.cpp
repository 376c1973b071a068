// Names in UTF-8 as the process's code page, where a character takes up to four bytes. The limit of
// a name counts what the platform gets: wide characters.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"

namespace {

class Utf8StorageTest : public StorageTest {
protected:
    void SetUp() override { ASSERT_EQ(GetACP(), unsigned(CP_UTF8)); }

    // What the platform gets of a name.
    std::wstring Passed(const std::string& name) {
        FakeStream stream;
        FakeStorage ole;
        ole.stream = &stream;
        Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
        Reference<IXStream> element(storage->CreateStream(name.c_str()));
        return ole.lastName;
    }
};

const std::string kAccent = "\xC3\xA9", kHiragana = "\xE3\x81\x82", kFace = "\xF0\x9F\x98\x80";
const std::wstring kWideAccent = L"\u00E9", kWideHiragana = L"\u3042", kWideFace = L"\xD83D\xDE00";

template <class Text>
Text Times(int count, const Text& text) {
    Text all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

}  // namespace

TEST_F(Utf8StorageTest, ANameOf512CharactersPassesWhole) {
    EXPECT_EQ(Passed(Times(512, kAccent)), Times(512, kWideAccent));
    EXPECT_EQ(Passed(Times(512, kHiragana)), Times(512, kWideHiragana));
    EXPECT_EQ(Passed(Times(256, kFace)), Times(256, kWideFace));
}

TEST_F(Utf8StorageTest, ALongerNameIsCutAfter512) {
    EXPECT_EQ(Passed(Times(600, kAccent)), Times(512, kWideAccent));
    EXPECT_EQ(Passed(Times(513, kHiragana)), Times(512, kWideHiragana));
    EXPECT_EQ(Passed(std::string(700, 'n')), std::wstring(512, L'n'));
}

TEST_F(Utf8StorageTest, ACharacterOfTwoWideOnesIsNotCutInTwo) {
    EXPECT_EQ(Passed("n" + Times(256, kFace)), L"n" + Times(255, kWideFace));
}

TEST_F(Utf8StorageTest, APathOfMoreThan512BytesIsCreatedAndOpened) {
    std::string directory = Path(Times(70, kHiragana) + "\\" + Times(70, kHiragana));
    std::string path = directory + "\\" + Times(60, kHiragana) + ".stg";
    ASSERT_GT(path.size(), 600u);
    {
        Reference<IXStorage> storage(new_Storage(path.c_str(), 0));
        PutStream(storage.Get(), (kHiragana + kFace).c_str(), "1");
        storage->CreateStorage(kAccent.c_str(), 0)->Release();
    }
    Reference<IXStorage> storage(open_Storage(path.c_str(), 0));
    EXPECT_EQ(storage->GetPath(), path);
    EXPECT_EQ(Names(storage->EnumStreams()), List{kHiragana + kFace});
    EXPECT_EQ(Names(storage->EnumStorages()), List{kAccent});
    EXPECT_EQ(StreamOf(storage.Get(), (kHiragana + kFace).c_str()), "1");
}

TEST_F(Utf8StorageTest, ANameThatIsEnumeratedIsNotCut) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    std::string name = Times(31, kHiragana);
    PutStream(storage.Get(), name.c_str(), "1");
    EXPECT_EQ(Names(storage->EnumStreams()), List{name});
    EXPECT_EQ(StreamOf(storage.Get(), name.c_str()), "1");
}
