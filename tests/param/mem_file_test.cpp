// The file behind the text form, slot by slot. No export gives one out.
#include "param/mem_file.h"

#include <gtest/gtest.h>
#include <qxcore/exception.h>

#include <cstring>

using qx::CMemFile;

namespace {

template <class Act>
int CodeOf(Act act) {
    try {
        act();
    } catch (CXException& e) {
        return e.GetCode();
    }
    return 0;
}

std::string Content(CMemFile& file) {
    file.Seek(0, 0);
    std::string content(size_t(file.GetLength()) + 10, '?');
    content.resize(file.Read(content.data(), unsigned(content.size())));
    return content;
}

}  // namespace

TEST(MemFileTest, ANewFileIsEmpty) {
    auto file = qx::Make<CMemFile>(1024u);
    EXPECT_EQ(file->GetLength(), 0u);
    EXPECT_EQ(file->Tell(), 0u);
    EXPECT_STREQ(file->GetPath(), "MemFile");
    EXPECT_NE(file->Flush(), 0);
    char byte;
    EXPECT_EQ(file->Read(&byte, 1), 0u);
}

TEST(MemFileTest, ItAnswersForAFile) {
    auto file = qx::Make<CMemFile>(1024u);
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXFile>(), nullptr), 1);
    EXPECT_EQ(file->QueryInterface(qx_typeid<IQXUnknown>(), nullptr), 1);
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXOutFile>(), nullptr), 0);
    EXPECT_EQ(file->AddRef(), 2u);
    EXPECT_EQ(file->Release(), 1u);
}

TEST(MemFileTest, BadArgumentsOfAConstructorAreCodeTen) {
    char block[4];
    EXPECT_EQ(CodeOf([] { CMemFile file(0u); }), QXERR_BAD_USE);
    EXPECT_EQ(CodeOf([] { CMemFile file(nullptr, 4u); }), QXERR_BAD_USE);
    EXPECT_EQ(CodeOf([&] { CMemFile file(block, 0u); }), QXERR_BAD_USE);
}

TEST(MemFileTest, WritingNothingAnswersForty) {
    CMemFile file(16u);
    EXPECT_EQ(file.WriteBytes("abc", 0), 40);
    EXPECT_EQ(file.WriteBytes(nullptr, 3), 40);
    EXPECT_EQ(file.GetLength(), 0u);
    EXPECT_EQ(file.WriteBytes("abc", 3), 0);
    file.Write(nullptr, 3);
    file.Write("x", 0);
    EXPECT_EQ(Content(file), "abc");
}

TEST(MemFileTest, TheContentEndsAtWhatWasWrittenNotAtWhatIsAllocated) {
    CMemFile file(1024u);
    file.Write("abc", 3);
    EXPECT_EQ(file.GetLength(), 3u);
    EXPECT_EQ(file.Seek(0, 2), 3u);
    EXPECT_EQ(Content(file), "abc");
}

TEST(MemFileTest, WritingOverKeepsWhatStandsBehind) {
    CMemFile file(4u);
    file.Write("abcdefgh", 8);
    EXPECT_EQ(file.Seek(2, 0), 2u);
    file.Write("XY", 2);
    EXPECT_EQ(file.Tell(), 4u);
    EXPECT_EQ(Content(file), "abXYefgh");
}

// A step below eight bytes is where the heap's own way of moving a block loses bytes.
TEST(MemFileTest, StepsOfAnySizeLoseNothing) {
    for (unsigned growth : {1u, 3u, 7u, 8u, 1024u}) {
        CMemFile file(growth);
        std::string expected;
        for (int i = 0; i < 3000; ++i) {
            char c = char('a' + i % 26);
            file.Write(&c, 1);
            expected += c;
        }
        EXPECT_EQ(Content(file), expected) << growth;
    }
}

TEST(MemFileTest, ReadDeliversWhatIsLeft) {
    CMemFile file(16u);
    file.Write("abcdef", 6);
    file.Seek(4, 0);
    char part[10] = {};
    EXPECT_EQ(file.Read(nullptr, 2), 0u);
    EXPECT_EQ(file.Tell(), 4u);
    EXPECT_EQ(file.Read(part, 10), 2u);
    EXPECT_STREQ(part, "ef");
    EXPECT_EQ(file.Read(part, 10), 0u);
}

TEST(MemFileTest, SeekIsCappedAtTheEndOfTheContent) {
    CMemFile file(1024u);
    file.Write("abcdef", 6);
    EXPECT_EQ(file.Seek(100, 0), 6u);
    EXPECT_EQ(file.Seek(-2, 1), 4u);
    EXPECT_EQ(file.Seek(1, 1), 5u);
    EXPECT_EQ(file.Seek(100, 1), 6u);
    EXPECT_EQ(file.Seek(-1, 2), 5u);
    EXPECT_EQ(file.Seek(1, 2), 6u);
    EXPECT_EQ(file.Seek(-100, 1), 0u);
    EXPECT_EQ(file.Seek(9223372036854775807ll, 2), 6u);
    EXPECT_EQ(file.Seek(-9223372036854775807ll - 1, 2), 0u);
}

TEST(MemFileTest, AnotherOriginIsCodeTen) {
    CMemFile file(1024u);
    for (int origin : {-1, 3}) {
        try {
            file.Seek(0, origin);
            ADD_FAILURE() << "nothing was thrown";
        } catch (CXFileException& e) {
            EXPECT_EQ(e.GetCode(), QXERR_BAD_USE);
            EXPECT_EQ(e.operation, 3);
            EXPECT_STREQ(e.name, "MemFile");
        }
    }
}

TEST(MemFileTest, TypedValuesTravelLittleEndian) {
    CMemFile file(8u);
    file.WriteByte(0x12);
    file.WriteShort(0x3456);
    file.WriteLong(0x789ABCDE);
    file.WriteDouble(1.0);
    file.WriteString("ab");
    EXPECT_EQ(Content(file), std::string("\x12\x56\x34\xDE\xBC\x9A\x78\0\0\0\0\0\0\xF0\x3F"
                                         "ab\0",
                                         18));
    file.Seek(0, 0);
    EXPECT_EQ(file.ReadByte(), 0x12);
    EXPECT_EQ(file.ReadShort(), 0x3456);
    EXPECT_EQ(file.ReadLong(), 0x789ABCDEu);
    EXPECT_EQ(file.ReadDouble(), 1.0);
}

TEST(MemFileTest, TypedReadsThrowOnlyWhereNothingIsLeft) {
    CMemFile file(8u);
    file.Write("\x01\x02", 2);
    file.Seek(0, 0);
    EXPECT_EQ(file.ReadLong(), 0x0201u);
    EXPECT_EQ(CodeOf([&] { file.ReadByte(); }), QXERR_EOF);
    EXPECT_EQ(CodeOf([&] { file.ReadShort(); }), QXERR_EOF);
    EXPECT_EQ(CodeOf([&] { file.ReadLong(); }), QXERR_EOF);
    EXPECT_EQ(CodeOf([&] { file.ReadDouble(); }), QXERR_EOF);
}

TEST(MemFileTest, ReadLineLeavesTheLineFeedOutOfItsAnswer) {
    CMemFile file(8u);
    file.Write("ab\ncd", 5);
    file.Seek(0, 0);
    char line[10];
    memset(line, '?', sizeof line);
    EXPECT_EQ(file.ReadLine(line, 8), 2);
    EXPECT_EQ(memcmp(line, "ab\n\0?", 5), 0);
    EXPECT_EQ(file.Tell(), 3u);
    memset(line, '?', sizeof line);
    EXPECT_EQ(file.ReadLine(line, 8), 2);
    EXPECT_EQ(memcmp(line, "cd?\0?", 5), 0);  // the cell behind the last byte keeps what it held
    EXPECT_EQ(file.ReadLine(line, 8), 0);
}

TEST(MemFileTest, ReadLineEndsAtItsCount) {
    CMemFile file(8u);
    file.Write("abcdef\n", 7);
    file.Seek(0, 0);
    char line[10];
    memset(line, '?', sizeof line);
    EXPECT_EQ(file.ReadLine(line, 3), 3);
    EXPECT_EQ(memcmp(line, "abc\0?", 5), 0);
    EXPECT_EQ(file.ReadLine(line, 4), 3);  // the line feed is the fourth byte
    EXPECT_EQ(memcmp(line, "def\0", 4), 0);
}

TEST(MemFileTest, ACallersBlockIsAllContentAndDoesNotGrow) {
    char block[4] = {'a', 'b', 'c', 'd'};
    {
        CMemFile file(block, sizeof block);
        EXPECT_EQ(file.GetLength(), 4u);
        EXPECT_EQ(Content(file), "abcd");
        file.Seek(1, 0);
        file.Write("XY", 2);
        EXPECT_EQ(CodeOf([&] { file.Write("zzzz", 4); }), QXERR_MEMORY);
        EXPECT_EQ(file.Tell(), 3u);
    }
    EXPECT_EQ(std::string(block, 4), "aXYd");
}
