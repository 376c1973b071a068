// What every stream class answers alike, run over all of them.
#include "storage/streams/stream_kinds.h"

namespace {

struct IUnknownToAll : IQXUnknown {
protected:
    ~IUnknownToAll() = default;
};

}  // namespace
QX_DECLARE_TYPEID(IUnknownToAll, ".?AUIUnknownToAll@@");

template <class Kind>
class EveryStreamTest : public testing::Test {
protected:
    Kind kind;
    IXStream* stream = kind.stream.Get();
};
using AllKinds = testing::Types<MemoryKind, ElementKind, WrapperKind, EmptyKind>;
TYPED_TEST_SUITE(EveryStreamTest, AllKinds);

TYPED_TEST(EveryStreamTest, ANewStreamHasOneReference) {
    EXPECT_EQ(this->stream->AddRef(), 2u);
    EXPECT_EQ(this->stream->Release(), 1u);
}

TYPED_TEST(EveryStreamTest, AnswersItsTwoIdentitiesWithItselfAndAReference) {
    for (auto* id : {&qx_typeid<IQXUnknown>(), &qx_typeid<IXStream>()}) {
        IQXUnknown* out = nullptr;
        EXPECT_EQ(this->stream->QueryInterface(*id, &out), 1);
        EXPECT_EQ(out, this->stream);
        EXPECT_EQ(CountOf(this->stream), 2u);
        out->Release();
    }
}

TYPED_TEST(EveryStreamTest, AQuestionWithoutAnOutPointerTakesNoReference) {
    EXPECT_EQ(this->stream->QueryInterface(qx_typeid<IXStream>(), nullptr), 1);
    EXPECT_EQ(this->stream->QueryInterface(qx_typeid<IUnknownToAll>(), nullptr), 0);
    EXPECT_EQ(CountOf(this->stream), 1u);
}

TYPED_TEST(EveryStreamTest, AnUnknownInterfaceGivesNull) {
    IQXUnknown* out = this->stream;
    EXPECT_EQ(this->stream->QueryInterface(qx_typeid<IUnknownToAll>(), &out), 0);
    EXPECT_EQ(out, nullptr);
}

TYPED_TEST(EveryStreamTest, TellsItsName) {
    EXPECT_STREQ(this->stream->GetName(), TypeParam::kName);
}

TYPED_TEST(EveryStreamTest, StartsAtPositionZero) {
    EXPECT_EQ(this->stream->Tell(), 0);
}

// The classes that keep what is written.
template <class Kind>
class KeepingStreamTest : public EveryStreamTest<Kind> {};
using KeepingKinds = testing::Types<MemoryKind, ElementKind, WrapperKind>;
TYPED_TEST_SUITE(KeepingStreamTest, KeepingKinds);

TYPED_TEST(KeepingStreamTest, NumbersTravelLittleEndianWithoutPadding) {
    IXStream* stream = this->stream;
    stream->WriteByte(0xFE);
    stream->WriteShort(0x1234);
    stream->WriteLong(0x89ABCDEF);
    stream->WriteDouble(-2.5);  // 0xC004000000000000
    EXPECT_EQ(BytesOf(stream),
              Bytes({0xFE, 0x34, 0x12, 0xEF, 0xCD, 0xAB, 0x89, 0, 0, 0, 0, 0, 0, 0x04, 0xC0}));
}

TYPED_TEST(KeepingStreamTest, NumbersComeBackAsTheyWentIn) {
    IXStream* stream = this->stream;
    stream->WriteByte(255);
    stream->WriteShort(65535);
    stream->WriteLong(0x80000001);
    stream->WriteDouble(1e300);
    stream->Seek(0, 0);
    EXPECT_EQ(stream->ReadByte(), 255);
    EXPECT_EQ(stream->ReadShort(), 65535);
    EXPECT_EQ(stream->ReadLong(), 0x80000001u);
    EXPECT_EQ(stream->ReadDouble(), 1e300);
}

TYPED_TEST(KeepingStreamTest, AStringIsWrittenWithItsNul) {
    this->stream->WriteString("ab");
    EXPECT_EQ(BytesOf(this->stream), Bytes({'a', 'b', 0}));
}

TYPED_TEST(KeepingStreamTest, AnEmptyTextIsOneByte) {
    this->stream->WriteString("");
    EXPECT_EQ(BytesOf(this->stream), Bytes({0}));
}

TYPED_TEST(KeepingStreamTest, AStringUpToItsNulComesBackWithTheNulCounted) {
    this->stream->WriteString("ab");
    this->stream->WriteString("c");
    this->stream->Seek(0, 0);
    char text[20];
    EXPECT_EQ(this->stream->ReadString(text, 10), 3);
    EXPECT_STREQ(text, "ab");
    EXPECT_EQ(this->stream->ReadString(text, 10), 2);
    EXPECT_STREQ(text, "c");
}

TYPED_TEST(KeepingStreamTest, SeekAnswersTheNewPositionFromEachOrigin) {
    IXStream* stream = this->stream;
    stream->Write("0123456789", 10);
    EXPECT_EQ(stream->Seek(3, 0), 3);
    EXPECT_EQ(stream->Tell(), 3);
    EXPECT_EQ(stream->Seek(4, 1), 7);
    EXPECT_EQ(stream->Seek(0, 2), 10);
    EXPECT_EQ(stream->Tell(), 10);
}

TYPED_TEST(KeepingStreamTest, AWriteInTheMiddleOverwrites) {
    IXStream* stream = this->stream;
    stream->Write("0123456789", 10);
    stream->Seek(2, 0);
    stream->Write("ab", 2);
    EXPECT_EQ(stream->Tell(), 4);
    EXPECT_EQ(BytesOf(stream), "01ab456789");
}

TYPED_TEST(KeepingStreamTest, AWriteAcrossTheEndAppends) {
    IXStream* stream = this->stream;
    stream->Write("0123", 4);
    stream->Seek(2, 0);
    stream->Write("abcd", 4);
    EXPECT_EQ(BytesOf(stream), "01abcd");
}

TYPED_TEST(KeepingStreamTest, BlocksOfManySizesComeBackWhole) {
    std::string all;
    for (int size : {1, 7, 512, 4095, 4096, 4097, 65536, 100001}) {
        std::string block(size, static_cast<char>('a' + size % 26));
        this->stream->Write(block.data(), size);
        all += block;
    }
    EXPECT_EQ(BytesOf(this->stream), all);
}

TYPED_TEST(KeepingStreamTest, ANegativeCountMovesNothing) {
    this->stream->Write("abc", 3);
    this->stream->Write("xyz", -1);
    EXPECT_EQ(BytesOf(this->stream), "abc");
    this->stream->Seek(0, 0);
    char byte = 'k';
    this->stream->Read(&byte, -1);
    EXPECT_EQ(byte, 'k');
    EXPECT_EQ(this->stream->Tell(), 0);
}

// The classes whose Read counts, whose length is known, and whose typed reads end in an exception.
template <class Kind>
class CountingStreamTest : public EveryStreamTest<Kind> {};
using CountingKinds = testing::Types<MemoryKind, ElementKind>;
TYPED_TEST_SUITE(CountingStreamTest, CountingKinds);

TYPED_TEST(CountingStreamTest, ReadDeliversWhatIsThereAndThenNothing) {
    this->stream->Write("abcde", 5);
    this->stream->Seek(2, 0);
    char bytes[10] = {};
    EXPECT_EQ(this->stream->Read(bytes, 10), 3);
    EXPECT_STREQ(bytes, "cde");
    EXPECT_EQ(this->stream->Read(bytes, 10), 0);
}

TYPED_TEST(CountingStreamTest, GetLengthIsTheTotalAndKeepsThePosition) {
    EXPECT_EQ(this->stream->GetLength(), 0);
    this->stream->Write("abcde", 5);
    this->stream->Seek(2, 0);
    EXPECT_EQ(this->stream->GetLength(), 5);
    EXPECT_EQ(this->stream->Tell(), 2);
}

TYPED_TEST(CountingStreamTest, ALongCutOffByTheEndComesWithTwoBytesAndTheNextRaises) {
    this->stream->WriteShort(0xBEEF);
    this->stream->Seek(0, 0);
    EXPECT_EQ(this->stream->ReadLong() & 0xFFFF, 0xBEEFu);
    EXPECT_EQ(Thrown([&] { this->stream->ReadLong(); }), "4");
    EXPECT_THROW(this->stream->ReadLong(), CXEofException);
}

TYPED_TEST(CountingStreamTest, EveryTypedReadRaisesAtTheEnd) {
    IXStream* stream = this->stream;
    char text[20];
    EXPECT_THROW(stream->ReadByte(), CXEofException);
    EXPECT_THROW(stream->ReadShort(), CXEofException);
    EXPECT_THROW(stream->ReadLong(), CXEofException);
    EXPECT_THROW(stream->ReadDouble(), CXEofException);
    EXPECT_THROW(stream->ReadString(text, 10), CXEofException);
}

TYPED_TEST(CountingStreamTest, EveryTypedReadLetsACutOffValuePass) {
    IXStream* stream = this->stream;
    stream->WriteByte(7);
    stream->Seek(0, 0);
    EXPECT_EQ(stream->ReadShort() & 0xFF, 7);
    stream->Seek(0, 0);
    EXPECT_EQ(stream->ReadLong() & 0xFF, 7u);
    stream->Seek(0, 0);
    EXPECT_NO_THROW(stream->ReadDouble());
}

TYPED_TEST(CountingStreamTest, ALineFeedEndsAStringAndStaysInIt) {
    Fill(this->stream, "ab\ncd");
    char text[40] = {};
    EXPECT_EQ(this->stream->ReadString(text, 30), 3);
    EXPECT_STREQ(text, "ab\n");
    EXPECT_EQ(this->stream->Tell(), 3);
}

TYPED_TEST(CountingStreamTest, AStringWithoutAnEndRaisesAtTheEndOfTheStream) {
    Fill(this->stream, "abc");
    char text[40];
    EXPECT_THROW(this->stream->ReadString(text, 30), CXEofException);
}

TYPED_TEST(CountingStreamTest, AnUnknownOriginIsBadUse) {
    this->stream->Write("abc", 3);
    for (int origin : {-1, 3, 100}) {
        EXPECT_EQ(Thrown([&] { this->stream->Seek(0, origin); }),
                  std::string("10 3 ") + TypeParam::kName);
    }
    EXPECT_EQ(this->stream->Tell(), 3);
}
