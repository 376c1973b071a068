// Property sets whose bytes do not hang together never reach the platform.
//
// The offsets are those of the published format: a header of 28 bytes, the format and the offset of
// each section, and in a section its size, the count of its properties, their numbers and offsets.
#include "storage/compound/storage_fixture.h"

using qx::Ask;
using qx::Reference;

namespace {

constexpr const char* kSetName = "\005SummaryInformation";

enum : size_t {
    kByteOrder = 0,
    kSections = 24,
    kSectionOffset = 44,
    kSection = 48,
    kSize = kSection,
    kCount = kSection + 4,
    kFirstNumber = kSection + 8,  // the code page
    kFirstOffset = kSection + 12,
    kSecondNumber = kSection + 16,  // the title
    kSecondOffset = kSection + 20,
    kPageType = kSection + 24,
    kPage = kSection + 28,
    kTextType = kSection + 32,
    kTextLength = kSection + 36,
    kText = kSection + 40,
};

class DamagedSetTest : public testing::Test {
protected:
    DamagedSetTest() {
        Append(0x0000FFFE);  // byte order, version
        Append(0x00020106);
        bytes.append(16, 0);  // the class
        Append(1);
        bytes += Bytes({0xE0, 0x85, 0x9F, 0xF2, 0xF9, 0x4F, 0x68, 0x10,  //
                        0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9});
        Append(kSection);
        Append(48);  // size
        Append(2);
        Append(1), Append(24);
        Append(2), Append(32);
        Append(VT_I2), Append(1252);
        Append(VT_LPSTR), Append(7);
        bytes += std::string("A plan\0\0", 8);
    }

    void Append(unsigned number) { bytes.append(reinterpret_cast<char*>(&number), 4); }
    void Put(size_t at, unsigned number) { memcpy(&bytes[at], &number, 4); }

    // What the title of a document with this set is.
    std::string Title() {
        PutStream(storage.Get(), kSetName, bytes);
        return AskTitle();
    }
    std::string AskTitle() {
        CQXVariant value("(unchanged)");
        int found = Ask<IQXProperty>(storage.Get())->GetProperty("Title", &value);
        return std::to_string(found) + " " + static_cast<char*>(value);
    }
    int SetTitle(const char* text) {
        CQXVariant value(text);
        return Ask<IQXProperty>(storage.Get())->SetProperty("Title", value);
    }
    void ExpectRefused(const char* what) {
        EXPECT_EQ(Title(), "0 (unchanged)") << what;
        EXPECT_EQ(SetTitle("Another plan"), 1) << what;
        EXPECT_EQ(AskTitle(), "1 Another plan") << what;
    }

    Reference<IXStorage> storage{new_Storage(nullptr, 0)};
    std::string bytes;
};

}  // namespace

TEST_F(DamagedSetTest, ASoundSetIsRead) {
    EXPECT_EQ(Title(), "1 A plan");
    EXPECT_EQ(SetTitle("Another plan"), 1);
    EXPECT_EQ(AskTitle(), "1 Another plan");
}

// Some writers leave out the bytes that fill up the last value.
TEST_F(DamagedSetTest, ASetWithoutItsLastFillingByteIsRead) {
    bytes.pop_back();
    EXPECT_EQ(Title(), "1 A plan");
}

TEST_F(DamagedSetTest, ADamagedNumberIsNotFollowedAndTheSetIsReplacedWhenItIsWritten) {
    struct {
        const char* what;
        size_t at;
        unsigned number;
    } rows[] = {
        {"another byte order", kByteOrder, 0x0000FEFF},
        {"no section", kSections, 0},
        {"more sections than there are", kSections, 3},
        {"a second section outside", kSections, 2},
        {"a section behind the end", kSectionOffset, 0x7FFFFFFF},
        {"a section that overflows", kSectionOffset, 0xFFFFFFFC},
        {"a section longer than the set", kSize, 52},
        {"a section of 4 GB", kSize, 0xFFFFFFFF},
        {"a section shorter than its table", kSize, 20},
        {"more properties than fit", kCount, 6},
        {"properties that overflow their count", kCount, 0x20000000},
        {"a value behind the end", kSecondOffset, 48},
        {"a value that begins before the end", kSecondOffset, 46},
        {"a value far away", kSecondOffset, 0xFFFFFFF0},
        {"a code page that is no number", kPageType, VT_LPSTR},
        {"two code pages", kSecondNumber, 1},
        {"no code page", kFirstNumber, 7},
        {"a code page of no number", kPage, 0},
        {"no property at all", kCount, 0},
        {"a text longer than the set", kTextLength, 9},
        {"a text of 2 GB", kTextLength, 0x7FFFFFFF},
        {"a text that overflows", kTextLength, 0xFFFFFFFF},
        {"a text without a terminator", kTextLength, 6},
        {"a text without a byte", kTextLength, 0},
        {"a wide text that is too long", kTextType, VT_LPWSTR},
        {"a block that is too long", kTextType, VT_BLOB | 0xFFFF0000},
        {"names that are none", kSecondNumber, 0},
    };
    const std::string sound = bytes;
    for (const auto& row : rows) {
        bytes = sound;
        Put(row.at, row.number);
        if (row.number == (VT_BLOB | 0xFFFF0000)) Put(kTextLength, 100);
        ExpectRefused(row.what);
    }
}

// Only the lower half of a type counts.
TEST_F(DamagedSetTest, TheUpperHalfOfATypeDoesNotHideATextWithoutABound) {
    Put(kTextType, VT_LPSTR | 0x007F0000);
    Put(kTextLength, 0);
    ExpectRefused("a text without a byte");
}

TEST_F(DamagedSetTest, ASetCutAnywhereIsRefusedOrRead) {
    const std::string sound = bytes;
    for (size_t length = 0; length < sound.size(); ++length) {
        bytes = sound.substr(0, length);
        bool whole = length == sound.size() - 1;  // without the filling byte
        EXPECT_EQ(Title(), whole ? "1 A plan" : "0 (unchanged)") << length;
        EXPECT_EQ(SetTitle("Another plan"), 1) << length;
    }
}

TEST_F(DamagedSetTest, NamesOfPropertiesAreFollowedWithinTheSection) {
    // In place of the title: a name of its own for property 2.
    Put(kSecondNumber, 0);
    Put(kTextType, 1);           // one name
    Put(kTextLength, 2);         // of property 2
    Put(kText, 4);               // four bytes long
    Put(kText + 4, 0x00636261);  // "abc"
    EXPECT_EQ(Title(), "0 (unchanged)");
    EXPECT_EQ(SetTitle("Added"), 1);
    EXPECT_EQ(AskTitle(), "1 Added");
    Put(kText, 5);
    ExpectRefused("a name longer than the section");
    Put(kText, 0);
    ExpectRefused("a name without a terminator");
    Put(kText, 4);
    Put(kText + 4, 0x64636261);
    ExpectRefused("a name without a terminator");
    Put(kTextType, 0x10000000);
    ExpectRefused("more names than there are");
}

// Under Wine reading a vector ends the process; elsewhere the platform reads the set. Such a set is
// another program's, so nothing takes its place.
TEST_F(DamagedSetTest, ASetWithVectorsIsLeftAlone) {
    Put(kTextType, VT_VECTOR | VT_LPSTR);
    bool readable = !GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version");
    if (readable) GTEST_SKIP() << "the platform reads vectors";
    EXPECT_EQ(Title(), "0 (unchanged)");
    EXPECT_EQ(SetTitle("Another plan"), 0);
    EXPECT_TRUE(StreamOf(storage.Get(), kSetName) == bytes);
}
