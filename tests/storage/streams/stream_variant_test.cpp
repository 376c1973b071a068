// The exact bytes of every variant on the wire, over the three classes that keep what is written.
#include "storage/streams/stream_kinds.h"

#include <vector>

namespace {

// A class of this program that writes itself as its four bytes.
class CNote : public CQXUnknownImpl<IPersistXStream> {
public:
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (InternalQueryInterface(id, out)) return 1;
        return QXAnswerQuery(id == qx_typeid<IPersistX>() ? this : nullptr, out);
    }
    const char* GetClassName() override { return "StorageNote"; }
    unsigned GetSizeMax() override { return 4; }
    void Load(IXStream* stream) override { text = stream->ReadLong(); }
    void Save(IXStream* stream) override { stream->WriteLong(text); }

    unsigned text = 0;
};

// An object that cannot be written.
class CSilent : public CQXUnknownImpl<IQXUnknown> {};

}  // namespace

QX_CREATOR(StorageNote) {
    return QXCreateInstance<CNote>(outer, id, out);
}

namespace {

struct Row {
    const char* what;
    CQXVariant value;
    std::string wire;
};

std::vector<Row> Rows() {
    CQXVariant flag(1, 1);
    flag.value.boolVal = 7;  // any number travels as it is
    tagSIZE size = {1, -2};
    tagRSIZE realSize = {1.0, -2.0};
    tagPOINT point = {3, 0x01020304};
    tagRPOINT realPoint = {0.5, 2.0};
    tagRECT rect = {1, 2, 3, 4};
    tagRRECT realRect = {1.0, 2.0, 4.0, 8.0};
    char four[] = {'\x01', '\0', '\xFF', '\x10'};
    tagQXBLOB blob = {4, four};
    return {
        {"empty", CQXVariant(), Bytes({0, 0, 0, 0, 0, 0})},
        {"bool", flag, Bytes({1, 0, 7, 0, 0, 0})},
        {"byte", CQXVariant(static_cast<unsigned char>(0xAB)), Bytes({2, 0, 0xAB})},
        {"unsigned short", CQXVariant(static_cast<unsigned short>(0x1234)),
         Bytes({3, 0, 0x34, 0x12})},
        {"unsigned long", CQXVariant(0x89ABCDEFul), Bytes({4, 0, 0xEF, 0xCD, 0xAB, 0x89})},
        {"int", CQXVariant(-2), Bytes({5, 0, 0xFE, 0xFF, 0xFF, 0xFF})},
        {"unsigned int", CQXVariant(0x01020304u), Bytes({6, 0, 4, 3, 2, 1})},
        {"long", CQXVariant(256l), Bytes({7, 0, 0, 1, 0, 0})},
        {"double", CQXVariant(1.0), Bytes({8, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F})},
        {"float", CQXVariant(-2.0f), Bytes({9, 0, 0, 0, 0, 0xC0})},
        {"text", CQXVariant("ab"), Bytes({10, 0, 3, 0, 0, 0, 'a', 'b', 0})},
        {"empty text", CQXVariant(""), Bytes({10, 0, 1, 0, 0, 0, 0})},
        {"size", CQXVariant(size), Bytes({11, 0, 1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF})},
        {"real size", CQXVariant(realSize),
         Bytes({12, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0})},
        {"point", CQXVariant(point), Bytes({13, 0, 3, 0, 0, 0, 4, 3, 2, 1})},
        {"real point", CQXVariant(realPoint),
         Bytes({14, 0, 0, 0, 0, 0, 0, 0, 0xE0, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0x40})},
        {"rectangle", CQXVariant(rect),
         Bytes({15, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0})},
        {"real rectangle", CQXVariant(realRect),
         Bytes({16,   0, 0, 0, 0, 0, 0, 0,    0xF0, 0x3F, 0, 0, 0, 0, 0, 0,    0,
                0x40, 0, 0, 0, 0, 0, 0, 0x10, 0x40, 0,    0, 0, 0, 0, 0, 0x20, 0x40})},
        {"blob", CQXVariant(blob), Bytes({17, 0, 4, 0, 0, 0, 1, 0, 0xFF, 0x10})},
    };
}

template <class Kind>
class StreamVariantTest : public testing::Test {
protected:
    static void SetUpTestSuite() { RegisterObject("StorageNote", GetModuleHandleA(nullptr)); }
    static void TearDownTestSuite() { UnregisterObject("StorageNote"); }

    // Makes the raw bytes the stream's next ones.
    void Put(const std::string& bytes) { Fill(stream, bytes); }
    std::string Written(const CQXVariant& value) {
        stream->WriteVariant(&value);
        return BytesOf(stream);
    }

    Kind kind;
    IXStream* stream = kind.stream.Get();
};
using Kinds = testing::Types<MemoryKind, ElementKind, WrapperKind>;
TYPED_TEST_SUITE(StreamVariantTest, Kinds);

// The frame of a StorageNote that holds 0x04030201.
std::string NoteFrame() {
    return std::string("StorageNote") + Bytes({0, 4, 0, 0, 0, 1, 2, 3, 4});
}

}  // namespace

TYPED_TEST(StreamVariantTest, EveryTypeHasItsExactBytes) {
    std::string all;
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.what);
        this->stream->WriteVariant(&row.value);
        all += row.wire;
        EXPECT_EQ(BytesOf(this->stream), all);
    }
}

TYPED_TEST(StreamVariantTest, EveryTypeComesBackFromItsBytes) {
    std::string all;
    for (const Row& row : Rows()) all += row.wire;
    this->Put(all);
    int position = 0;
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.what);
        CQXVariant variant("an old value");
        EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
        EXPECT_TRUE(variant == row.value);
        position += static_cast<int>(row.wire.size());
        EXPECT_EQ(this->stream->Tell(), position);
    }
}

TYPED_TEST(StreamVariantTest, AnEmptyVariantOccupiesSixBytes) {
    EXPECT_EQ(this->Written(CQXVariant()).size(), 6u);
}

TYPED_TEST(StreamVariantTest, AStringComesBackEqualAndItsWireLengthCountsTheNul) {
    std::string wire = this->Written(CQXVariant("five!"));
    EXPECT_EQ(wire.substr(2, 4), Bytes({6, 0, 0, 0}));
    this->stream->Seek(0, 0);
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    EXPECT_STREQ(variant, "five!");
}

TYPED_TEST(StreamVariantTest, AReadTextIsItsOwnersToFree) {
    this->Put(Bytes({10, 0, 3, 0, 0, 0, 'a', 'b', 0}));
    tagQXVARIANT record;
    QXVariantInit(&record);
    this->stream->ReadVariant(&record);
    tagQXVARIANT copy;
    QXVariantInit(&copy);
    QXVariantCopy(&copy, &record);
    QXVariantClear(&record);
    EXPECT_STREQ(copy.value.string, "ab");
    QXVariantClear(&copy);
}

TYPED_TEST(StreamVariantTest, ATextWithoutItsNulIsTerminated) {
    this->Put(Bytes({10, 0, 2, 0, 0, 0, 'a', 'b', 'c'}));
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    EXPECT_STREQ(variant, "ab");
}

TYPED_TEST(StreamVariantTest, ATextOfNoBytesIsEmpty) {
    this->Put(Bytes({10, 0, 0, 0, 0, 0, 'x'}));
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    EXPECT_STREQ(variant, "");
    EXPECT_EQ(this->stream->Tell(), 6);
}

TYPED_TEST(StreamVariantTest, ANulInsideATextCutsItAndTheRestIsReadOver) {
    this->Put(Bytes({10, 0, 5, 0, 0, 0, 'a', 0, 'b', 'c', 0}));
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    EXPECT_STREQ(variant, "a");
    EXPECT_EQ(this->stream->Tell(), 11);
}

TYPED_TEST(StreamVariantTest, ANullTextIsWrittenAsAnEmptyOne) {
    EXPECT_EQ(this->Written(CQXVariant(static_cast<const char*>(nullptr))),
              Bytes({10, 0, 1, 0, 0, 0, 0}));
}

TYPED_TEST(StreamVariantTest, AnEmptyBlobIsReadWhole) {
    EXPECT_EQ(this->Written(CQXVariant(tagQXBLOB{0, nullptr})), Bytes({17, 0, 0, 0, 0, 0}));
    this->stream->Seek(0, 0);
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    EXPECT_EQ(variant.type, QXVT_BLOB);
    EXPECT_EQ(variant.value.blob.size, 0ul);
}

TYPED_TEST(StreamVariantTest, ABlobWithoutDataIsWrittenAsNoBytes) {
    tagQXVARIANT record;
    QXVariantInit(&record);
    record.type = QXVT_BLOB;
    record.value.blob.size = 5;
    this->stream->WriteVariant(&record);
    EXPECT_EQ(BytesOf(this->stream), Bytes({17, 0, 0, 0, 0, 0}));
}

TYPED_TEST(StreamVariantTest, AnObjectTravelsInItsFrame) {
    auto note = new CNote;
    note->text = 0x04030201;
    CQXVariant value(static_cast<IQXUnknown*>(note));
    note->Release();
    EXPECT_EQ(this->Written(value), Bytes({18, 0}) + NoteFrame());
    EXPECT_EQ(CountOf(note), 1u);
}

TYPED_TEST(StreamVariantTest, AnObjectComesBackAsItsClass) {
    this->Put(Bytes({18, 0}) + NoteFrame());
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    ASSERT_EQ(variant.type, QXVT_UNKNOWN);
    auto note = static_cast<CNote*>(static_cast<IPersistXStream*>(variant.value.unknown));
    EXPECT_EQ(note->text, 0x04030201u);
    EXPECT_EQ(CountOf(note), 1u);
}

TYPED_TEST(StreamVariantTest, AnObjectOfAnUnknownClassKeepsItsBytes) {
    std::string wire = Bytes({18, 0}) + "Absent" + Bytes({0, 3, 0, 0, 0, 9, 8, 7});
    this->Put(wire);
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    this->stream->WriteVariant(&variant);
    EXPECT_EQ(BytesOf(this->stream), wire + wire);
}

TYPED_TEST(StreamVariantTest, ANullObjectIsOneByteAndReadWhole) {
    EXPECT_EQ(this->Written(CQXVariant(static_cast<IQXUnknown*>(nullptr))), Bytes({18, 0, 0}));
    this->stream->Seek(0, 0);
    CQXVariant variant("old");
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    EXPECT_EQ(variant.type, QXVT_UNKNOWN);
    EXPECT_EQ(variant.value.unknown, nullptr);
}

TYPED_TEST(StreamVariantTest, AnObjectThatCannotBeWrittenIsWrittenAsNull) {
    auto silent = new CSilent;
    CQXVariant value(static_cast<IQXUnknown*>(silent));
    silent->Release();
    EXPECT_EQ(this->Written(value), Bytes({18, 0, 0}));
    EXPECT_EQ(CountOf(silent), 1u);
}

TYPED_TEST(StreamVariantTest, ATagOutsideTheTableWritesNothingBehindIt) {
    tagQXVARIANT record;
    QXVariantInit(&record);
    record.type = QXVT_UNKNOWN_REF;
    this->stream->WriteVariant(&record);
    record.type = 19;
    this->stream->WriteVariant(&record);
    EXPECT_EQ(BytesOf(this->stream), Bytes({0x00, 0x40, 19, 0}));
}

TYPED_TEST(StreamVariantTest, ATagAbove18IsABadFormatAndLeavesTheTagAlone) {
    for (int tag : {19, 0x4000, 0xFFFF}) {
        SCOPED_TRACE(tag);
        this->stream->Seek(0, 0);
        this->Put(Bytes({tag & 0xFF, tag >> 8, 1, 2, 3, 4}));
        CQXVariant variant("old");
        EXPECT_EQ(Thrown([&] { this->stream->ReadVariant(&variant); }),
                  std::string("15 1 ") + TypeParam::kName);
        EXPECT_EQ(variant.type, tag);
        const tagQXVALUE zero = {};
        EXPECT_EQ(memcmp(&variant.value, &zero, sizeof zero), 0);
        EXPECT_EQ(this->stream->Tell(), 2);
    }
}

TYPED_TEST(StreamVariantTest, AtTheEndNothingIsReadAndTheVariantIsEmpty) {
    CQXVariant variant("old");
    EXPECT_EQ(this->stream->ReadVariant(&variant), 0);
    EXPECT_EQ(variant.type, QXVT_EMPTY);
}

// A stream whose Read is a success flag answers 0 here, for its short read is no success.
TYPED_TEST(StreamVariantTest, AVariantCutOffByTheEndCountsAsReadWhenItsLastReadDeliveredAnything) {
    for (const Row& row : Rows()) {
        if (row.value.type == QXVT_BLOB) continue;
        size_t payload = row.value.type == QXVT_STRING ? 6 : 2;
        for (size_t cut = 2; cut < row.wire.size(); ++cut) {
            SCOPED_TRACE(std::string(row.what) + " cut at " + std::to_string(cut));
            TypeParam fresh;
            Fill(fresh.stream.Get(), row.wire.substr(0, cut));
            CQXVariant variant;
            EXPECT_EQ(fresh.stream->ReadVariant(&variant), cut > payload && TypeParam::kReadCounts);
            EXPECT_EQ(variant.type, row.value.type);
        }
    }
}

TYPED_TEST(StreamVariantTest, AVariantCutOffByTheEndHasZerosBehindWhatCame) {
    this->Put(Bytes({5, 0, 0x34, 0x12}));
    CQXVariant variant(-1);
    EXPECT_EQ(this->stream->ReadVariant(&variant), TypeParam::kReadCounts);
    EXPECT_EQ(static_cast<int>(variant), 0x1234);
}

TYPED_TEST(StreamVariantTest, ABlobCutOffByTheEndHasItsSizeAndZerosBehindWhatCame) {
    this->Put(Bytes({17, 0, 4, 0, 0, 0, 1, 2}));
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), TypeParam::kReadCounts);
    ASSERT_EQ(variant.value.blob.size, 4ul);
    EXPECT_EQ(std::string(static_cast<char*>(variant.value.blob.data), 4), Bytes({1, 2, 0, 0}));
}

TYPED_TEST(StreamVariantTest, ATextThatClaimsMoreThanIsThereHoldsWhatIsThere) {
    this->Put(Bytes({10, 0, 0, 0, 1, 0, 'a', 'b'}));
    CQXVariant variant;
    EXPECT_EQ(this->stream->ReadVariant(&variant), TypeParam::kReadCounts);
    EXPECT_STREQ(variant, "ab");
}

TYPED_TEST(StreamVariantTest, AnObjectWithoutAFrameIsNullAndNothingThatWasRead) {
    this->Put(Bytes({18, 0}));
    CQXVariant variant("old");
    EXPECT_EQ(this->stream->ReadVariant(&variant), 0);
    EXPECT_EQ(variant.type, QXVT_UNKNOWN);
    EXPECT_EQ(variant.value.unknown, nullptr);
}

TYPED_TEST(StreamVariantTest, ALengthThatNoStreamCanHoldIsABadFormat) {
    for (int tag : {10, 17}) {
        this->stream->Seek(0, 0);
        this->Put(Bytes({tag, 0, 0, 0, 0, 0x80, 'a', 'b'}));
        CQXVariant variant;
        EXPECT_EQ(Thrown([&] { this->stream->ReadVariant(&variant); }),
                  std::string("15 1 ") + TypeParam::kName);
    }
}

// The stream's own end passes where a length or a name is missing altogether.
template <class Kind>
class CountingStreamVariantTest : public StreamVariantTest<Kind> {};
using CountingKinds = testing::Types<MemoryKind, ElementKind>;
TYPED_TEST_SUITE(CountingStreamVariantTest, CountingKinds);

TYPED_TEST(CountingStreamVariantTest, ABlobWithoutACountRaisesTheEndOfTheStream) {
    this->Put(Bytes({17, 0}));
    CQXVariant variant;
    EXPECT_EQ(Thrown([&] { this->stream->ReadVariant(&variant); }), "4");
}

TYPED_TEST(CountingStreamVariantTest, AClaimOfTwoGigabytesTakesNoMemoryForATextOfTwoBytes) {
    this->Put(Bytes({10, 0, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 'b'}));
    CQXVariant variant;
    size_t before, after;
    unsigned operations;
    Get_CoreActivity(&before, &operations);
    EXPECT_EQ(this->stream->ReadVariant(&variant), 1);
    Get_CoreActivity(&after, &operations);
    EXPECT_STREQ(variant, "ab");
    EXPECT_LT(after - before, 4096u);
}

TYPED_TEST(CountingStreamVariantTest, AnObjectLargerThanItsStreamIsCode16) {
    this->Put(Bytes({18, 0}) + "Absent" + Bytes({0, 4, 0, 0, 0, 1, 2, 3}));
    CQXVariant variant;
    EXPECT_EQ(Thrown([&] { this->stream->ReadVariant(&variant); }), "16");
    EXPECT_EQ(variant.value.unknown, nullptr);
}
