#include "variant/probe_object.h"

#include <gtest/gtest.h>
#include <qxcore/string.h>
#include <qxcore/variant.h>

#include <cstddef>
#include <cstring>
#include <iterator>
#include <type_traits>

namespace {

char g_abc[] = "abc";
const tagQXBLOB kAbc = {3, g_abc};

const tagSIZE kSize = {3, -4};
const tagRSIZE kRSize = {3.5, -4.5};
const tagPOINT kPoint = {5, -6};
const tagRPOINT kRPoint = {5.5, -6.5};
const tagRECT kRect = {1, 2, 3, 4};
const tagRRECT kRRect = {1.5, 2.5, 3.5, 4.5};

template <class T>
bool SameBytes(const T& a, const T& b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

bool IsAllZero(const tagQXVARIANT& v) {
    tagQXVARIANT zero;
    memset(&zero, 0, sizeof zero);
    return SameBytes(v, zero);
}

const char* TextOf(const CQXVariant& v) {
    return v;
}

}  // namespace

TEST(VariantTest, TheClassAddsNothingToTheRecord) {
    EXPECT_EQ(sizeof(CQXVariant), sizeof(tagQXVARIANT));
    EXPECT_FALSE(std::is_polymorphic_v<CQXVariant>);
    EXPECT_EQ(offsetof(tagQXVARIANT, type), 0u);
    EXPECT_EQ(sizeof(tagQXVARIANT::type), 2u);
    EXPECT_EQ(sizeof(tagQXVARIANT::value), sizeof(tagRRECT));
    EXPECT_EQ(sizeof(tagRRECT), 32u);
}

TEST(VariantTest, TheCodesAreThoseOfTheFormats) {
    const unsigned short codes[] = {QXVT_EMPTY,  QXVT_BOOL,  QXVT_UI1,   QXVT_UI2,    QXVT_ULONG,
                                    QXVT_INT,    QXVT_UINT,  QXVT_LONG,  QXVT_DOUBLE, QXVT_FLOAT,
                                    QXVT_STRING, QXVT_SIZE,  QXVT_RSIZE, QXVT_POINT,  QXVT_RPOINT,
                                    QXVT_RECT,   QXVT_RRECT, QXVT_BLOB,  QXVT_UNKNOWN};
    for (unsigned short i = 0; i < std::size(codes); ++i) EXPECT_EQ(codes[i], i);
    EXPECT_EQ(std::size(codes), 19u);
    EXPECT_EQ(QXVT_UNKNOWN_REF, 16384);
}

TEST(VariantTest, InitZeroesTheWholeRecordAndReleasesNothing) {
    Probe probe;
    tagQXVARIANT v;
    memset(&v, 0xCC, sizeof v);
    v.type = QXVT_UNKNOWN;
    v.value.unknown = probe;
    QXVariantInit(&v);
    EXPECT_TRUE(IsAllZero(v));
    EXPECT_EQ(probe.Refs(), 1u);
}

TEST(VariantTest, ADefaultVariantIsEmpty) {
    EXPECT_TRUE(IsAllZero(CQXVariant()));
}

// ---- constructors

TEST(VariantTest, ATextConstructorCopiesTheText) {
    char text[] = "text";
    CQXVariant v(text);
    EXPECT_EQ(v.type, 10);
    EXPECT_NE(TextOf(v), text);
    EXPECT_STREQ(TextOf(v), "text");
}

TEST(VariantTest, ANullTextGivesTypeTenWithoutText) {
    CQXVariant v(static_cast<const char*>(nullptr));
    EXPECT_EQ(v.type, 10);
    EXPECT_EQ(TextOf(v), nullptr);
}

TEST(VariantTest, AStringConstructorCopiesItsBytesAndTheTerminator) {
    CXString text("text");
    CQXVariant v(text);
    EXPECT_EQ(v.type, 10);
    EXPECT_NE(TextOf(v), static_cast<const char*>(text));
    EXPECT_STREQ(TextOf(v), "text");
    CQXVariant empty{CXString()};
    EXPECT_EQ(empty.type, 10);
    EXPECT_STREQ(TextOf(empty), "");
}

TEST(VariantTest, NumberConstructorsTakeTheTypeOfTheirArgument) {
    CQXVariant ui1(static_cast<unsigned char>(200));
    EXPECT_EQ(ui1.type, 2);
    EXPECT_EQ(static_cast<unsigned char>(ui1), 200);
    CQXVariant ui2(static_cast<unsigned short>(60000));
    EXPECT_EQ(ui2.type, 3);
    EXPECT_EQ(static_cast<unsigned short>(ui2), 60000);
    CQXVariant ulong(4000000000ul);
    EXPECT_EQ(ulong.type, 4);
    EXPECT_EQ(static_cast<unsigned long>(ulong), 4000000000ul);
    CQXVariant integer(-5);
    EXPECT_EQ(integer.type, 5);
    EXPECT_EQ(static_cast<int>(integer), -5);
    CQXVariant uint(4000000000u);
    EXPECT_EQ(uint.type, 6);
    EXPECT_EQ(static_cast<unsigned int>(uint), 4000000000u);
    CQXVariant longer(-7l);
    EXPECT_EQ(longer.type, 7);
    EXPECT_EQ(static_cast<long>(longer), -7l);
    CQXVariant real(1.5);
    EXPECT_EQ(real.type, 8);
    EXPECT_EQ(static_cast<double>(real), 1.5);
    CQXVariant single(1.25f);
    EXPECT_EQ(single.type, 9);
    EXPECT_EQ(static_cast<float>(single), 1.25f);
}

template <class T>
class IntegerVariantTest : public testing::Test {};
using Integers =
    testing::Types<unsigned char, unsigned short, unsigned long, int, unsigned int, long>;
TYPED_TEST_SUITE(IntegerVariantTest, Integers);

TYPED_TEST(IntegerVariantTest, ASecondArgumentOfOneMakesABool) {
    CQXVariant yes(TypeParam(5), 1), no(TypeParam(0), 1);
    EXPECT_EQ(yes.type, 1);
    EXPECT_EQ(static_cast<int>(yes), 1);
    EXPECT_EQ(no.type, 1);
    EXPECT_EQ(static_cast<int>(no), 0);
}

TYPED_TEST(IntegerVariantTest, AnyOtherSecondArgumentLeavesTheType) {
    unsigned short type = CQXVariant(TypeParam(5)).type;
    EXPECT_GE(type, 2);
    EXPECT_LE(type, 7);
    for (unsigned short second : {0, 2, 10, 18, 65535}) {
        CQXVariant v(TypeParam(5), second);
        EXPECT_EQ(v.type, type);
        EXPECT_EQ(static_cast<TypeParam>(v), TypeParam(5));
    }
}

TEST(VariantTest, TheBytesBehindAValueAreZero) {
    CQXVariant v(static_cast<unsigned char>(200));
    EXPECT_EQ(static_cast<unsigned long>(v), 200ul);
}

TEST(VariantTest, RecordConstructorsCopyTheRecord) {
    CQXVariant size(kSize), rsize(kRSize), point(kPoint), rpoint(kRPoint), rect(kRect),
        rrect(kRRect);
    EXPECT_EQ(size.type, 11);
    EXPECT_TRUE(SameBytes(static_cast<tagSIZE>(size), kSize));
    EXPECT_EQ(rsize.type, 12);
    EXPECT_TRUE(SameBytes(static_cast<tagRSIZE>(rsize), kRSize));
    EXPECT_EQ(point.type, 13);
    EXPECT_TRUE(SameBytes(static_cast<tagPOINT>(point), kPoint));
    EXPECT_EQ(rpoint.type, 14);
    EXPECT_TRUE(SameBytes(static_cast<tagRPOINT>(rpoint), kRPoint));
    EXPECT_EQ(rect.type, 15);
    EXPECT_TRUE(SameBytes(static_cast<tagRECT>(rect), kRect));
    EXPECT_EQ(rrect.type, 16);
    EXPECT_TRUE(SameBytes(static_cast<tagRRECT>(rrect), kRRect));
}

TEST(VariantTest, ABlobConstructorCopiesTheBytes) {
    CQXVariant v(kAbc);
    EXPECT_EQ(v.type, 17);
    tagQXBLOB inner = v;
    EXPECT_EQ(inner.size, 3u);
    EXPECT_NE(inner.data, g_abc);
    EXPECT_EQ(memcmp(inner.data, "abc", 3), 0);
}

TEST(VariantTest, ABlobWithoutDataGivesItsSizeAndNoData) {
    tagQXBLOB source = {7, nullptr};
    CQXVariant v(source), copy(v), assigned;
    assigned = source;
    for (const CQXVariant* each : {&v, &copy, &assigned}) {
        EXPECT_EQ(each->type, 17);
        EXPECT_EQ(static_cast<tagQXBLOB>(*each).size, 7u);
        EXPECT_EQ(static_cast<tagQXBLOB>(*each).data, nullptr);
    }
}

TEST(VariantTest, AnObjectConstructorTakesAReference) {
    Probe probe;
    {
        CQXVariant v(static_cast<IQXUnknown*>(probe));
        EXPECT_EQ(v.type, 18);
        EXPECT_EQ(static_cast<IQXUnknown*>(v), static_cast<IQXUnknown*>(probe));
        EXPECT_EQ(probe.Refs(), 2u);
    }
    EXPECT_EQ(probe.Refs(), 1u);
}

TEST(VariantTest, ANullObjectGivesTypeEighteenWithNull) {
    CQXVariant v(static_cast<IQXUnknown*>(nullptr));
    EXPECT_EQ(v.type, 18);
    EXPECT_EQ(static_cast<IQXUnknown*>(v), nullptr);
}

TEST(VariantTest, ACopyHasTextBytesAndReferenceOfItsOwn) {
    Probe probe;
    CQXVariant text("abc"), blob(kAbc), object(static_cast<IQXUnknown*>(probe));
    const tagQXVARIANT& record = text;
    CQXVariant textCopy(text), fromRecord(record), fromPointer(&record), blobCopy(blob),
        objectCopy(object);
    for (const CQXVariant* copy : {&textCopy, &fromRecord, &fromPointer}) {
        EXPECT_EQ(copy->type, 10);
        EXPECT_NE(TextOf(*copy), TextOf(text));
        EXPECT_STREQ(TextOf(*copy), "abc");
    }
    EXPECT_NE(static_cast<tagQXBLOB>(blobCopy).data, static_cast<tagQXBLOB>(blob).data);
    EXPECT_EQ(memcmp(static_cast<tagQXBLOB>(blobCopy).data, "abc", 3), 0);
    EXPECT_EQ(probe.Refs(), 3u);
}

// ---- the C-style operations

TEST(VariantTest, ClearReleasesWhatTheRecordOwns) {
    Probe probe;
    CQXVariant object(static_cast<IQXUnknown*>(probe)), text("abc"), blob(kAbc), number(5);
    for (CQXVariant* v : {&object, &text, &blob, &number}) {
        QXVariantClear(v);
        EXPECT_TRUE(IsAllZero(*v));
    }
    EXPECT_EQ(probe.Refs(), 1u);
}

TEST(VariantTest, ClearOfNullPointersReleasesNothing) {
    for (unsigned short type : {10, 17, 18}) {
        tagQXVARIANT v;
        QXVariantInit(&v);
        v.type = type;
        QXVariantClear(&v);
        EXPECT_TRUE(IsAllZero(v));
    }
}

TEST(VariantTest, ClearOfABorrowedObjectDropsThePointerWithoutARelease) {
    Probe probe;
    CQXVariant v;
    v.type = QXVT_UNKNOWN_REF;
    v.value.unknown = probe;
    v.Clear();
    EXPECT_TRUE(IsAllZero(v));
    EXPECT_EQ(probe.Refs(), 1u);
}

TEST(VariantTest, CopyClearsTheDestinationFirst) {
    Probe probe;
    CQXVariant dest(static_cast<IQXUnknown*>(probe)), src("abc");
    QXVariantCopy(&dest, &src);
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_EQ(dest.type, 10);
    EXPECT_STREQ(TextOf(dest), "abc");
    EXPECT_NE(TextOf(dest), TextOf(src));
}

TEST(VariantTest, CopyOfANullObjectTakesNoReference) {
    CQXVariant null(static_cast<IQXUnknown*>(nullptr)), copy(null);
    EXPECT_EQ(copy.type, 18);
    EXPECT_EQ(static_cast<IQXUnknown*>(copy), nullptr);
}

TEST(VariantTest, CopyOfABorrowedObjectStaysBorrowed) {
    Probe probe;
    CQXVariant v;
    v.type = QXVT_UNKNOWN_REF;
    v.value.unknown = probe;
    CQXVariant copy(v);
    EXPECT_EQ(copy.type, QXVT_UNKNOWN_REF);
    EXPECT_EQ(static_cast<IQXUnknown*>(copy), static_cast<IQXUnknown*>(probe));
    EXPECT_EQ(probe.Refs(), 1u);
}

TEST(VariantTest, CopyingAVariantOntoItselfEmptiesIt) {
    CQXVariant text("abc"), number(5), assignedText("abc"), assignedNumber(5);
    QXVariantCopy(&text, &text);
    QXVariantCopy(&number, &number);
    CQXVariant &itself = assignedText, &itselfToo = assignedNumber;
    assignedText = itself;
    assignedNumber = itselfToo;
    for (const CQXVariant* v : {&text, &number, &assignedText, &assignedNumber})
        EXPECT_TRUE(IsAllZero(*v));
}

// ---- assignment

TEST(VariantTest, AssignmentOfVariantsCopiesDeeply) {
    Probe probe;
    CQXVariant v(static_cast<IQXUnknown*>(probe)), text("abc"), number(5);
    v = text;
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_STREQ(TextOf(v), "abc");
    EXPECT_NE(TextOf(v), TextOf(text));
    const tagQXVARIANT& record = number;
    v = record;
    EXPECT_EQ(v.type, 5);
    EXPECT_EQ(static_cast<int>(v), 5);
    v = &text;
    EXPECT_EQ(v.type, 10);
    number = text;
    EXPECT_STREQ(TextOf(number), "abc");
}

TEST(VariantTest, AssignmentOfTextsAndObjectsClearsFirst) {
    Probe first, second;
    CQXVariant v(static_cast<IQXUnknown*>(first));
    v = static_cast<IQXUnknown*>(second);
    EXPECT_EQ(first.Refs(), 1u);
    EXPECT_EQ(second.Refs(), 2u);
    v = "text";
    EXPECT_EQ(second.Refs(), 1u);
    EXPECT_EQ(v.type, 10);
    EXPECT_STREQ(TextOf(v), "text");
    v = CXString("string");
    EXPECT_STREQ(TextOf(v), "string");
    v = static_cast<const char*>(nullptr);
    EXPECT_EQ(v.type, 10);
    EXPECT_EQ(TextOf(v), nullptr);
    v = static_cast<IQXUnknown*>(nullptr);
    EXPECT_EQ(v.type, 18);
    EXPECT_EQ(static_cast<IQXUnknown*>(v), nullptr);
}

TEST(VariantTest, AVariantMayBeAssignedItsOwnTextOrObject) {
    CQXVariant text("abcdef");
    text = TextOf(text) + 2;
    EXPECT_STREQ(TextOf(text), "cdef");

    bool alive = false;
    auto object = new ProbeObject(&alive);
    CQXVariant v(static_cast<IQXUnknown*>(object));
    object->Release();
    v = static_cast<IQXUnknown*>(v);
    EXPECT_TRUE(alive);
    v.Clear();
    EXPECT_FALSE(alive);
}

template <class T>
void ExpectAssignmentReplaces(const T& value, unsigned short type) {
    Probe probe;
    CQXVariant v(static_cast<IQXUnknown*>(probe));
    v = value;
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_EQ(v.type, type);
    EXPECT_TRUE(SameBytes(static_cast<T>(v), value));

    v = T();  // the same type again
    EXPECT_EQ(v.type, type);
    EXPECT_TRUE(SameBytes(static_cast<T>(v), T()));
}

TEST(VariantTest, AssignmentOfAnotherTypeClearsAndSetsIt) {
    ExpectAssignmentReplaces(static_cast<unsigned char>(200), 2);
    ExpectAssignmentReplaces(static_cast<unsigned short>(60000), 3);
    ExpectAssignmentReplaces(4000000000ul, 4);
    ExpectAssignmentReplaces(-5, 5);
    ExpectAssignmentReplaces(4000000000u, 6);
    ExpectAssignmentReplaces(-7l, 7);
    ExpectAssignmentReplaces(1.5, 8);
    ExpectAssignmentReplaces(1.25f, 9);
    ExpectAssignmentReplaces(kSize, 11);
    ExpectAssignmentReplaces(kRSize, 12);
    ExpectAssignmentReplaces(kPoint, 13);
    ExpectAssignmentReplaces(kRPoint, 14);
    ExpectAssignmentReplaces(kRect, 15);
    ExpectAssignmentReplaces(kRRect, 16);
}

template <class T>
void ExpectBoolIsKept(T nonZero) {
    CQXVariant v(0, 1);
    v = nonZero;
    EXPECT_EQ(v.type, 1);
    EXPECT_EQ(static_cast<int>(v), 1);
    v = T(0);
    EXPECT_EQ(v.type, 1);
    EXPECT_EQ(static_cast<int>(v), 0);
}

TEST(VariantTest, WiderIntegersKeepABoolABool) {
    ExpectBoolIsKept(static_cast<unsigned short>(7));
    ExpectBoolIsKept(7ul);
    ExpectBoolIsKept(-7);
    ExpectBoolIsKept(7u);
    ExpectBoolIsKept(-7l);
}

TEST(VariantTest, AnUnsignedCharReplacesABool) {
    CQXVariant v(1, 1);
    v = static_cast<unsigned char>(7);
    EXPECT_EQ(v.type, 2);
    EXPECT_EQ(static_cast<unsigned char>(v), 7);
}

TEST(VariantTest, ADoubleReplacesABool) {
    CQXVariant v(1, 1);
    v = 2.0;
    EXPECT_EQ(v.type, 8);
}

TEST(VariantTest, AssignmentOfABlobClearsAnotherTypeFirst) {
    Probe probe;
    CQXVariant v(static_cast<IQXUnknown*>(probe));
    v = kAbc;
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_EQ(v.type, 17);
    EXPECT_NE(static_cast<tagQXBLOB>(v).data, g_abc);
    EXPECT_EQ(memcmp(static_cast<tagQXBLOB>(v).data, "abc", 3), 0);
}

TEST(VariantTest, AssignmentOfABlobToABlobLeavesTheOldBlockToTheCaller) {
    char other[] = "vwxyz";
    tagQXBLOB five = {5, other};
    CQXVariant v(kAbc);
    tagQXVARIANT old = v;  // keeps the block that the assignment drops
    v = five;
    EXPECT_EQ(static_cast<tagQXBLOB>(v).size, 5u);
    EXPECT_EQ(memcmp(static_cast<tagQXBLOB>(v).data, "vwxyz", 5), 0);
    EXPECT_EQ(memcmp(old.value.blob.data, "abc", 3), 0);
    QXVariantClear(&old);
}

// ---- ownership, casts, forwarding

TEST(VariantTest, AttachMovesOwnershipAndLeavesTheSourcesOtherBytes) {
    Probe probe;
    CQXVariant v(static_cast<IQXUnknown*>(probe)), source("abc");
    char* text = source;
    v.Attach(source);
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_EQ(v.type, 10);
    EXPECT_EQ(TextOf(v), text);
    EXPECT_EQ(source.type, 0);
    EXPECT_EQ(source.value.string, text);
}

TEST(VariantTest, AttachingAVariantToItselfEmptiesIt) {
    CQXVariant text("mine"), number(5);
    text.Attach(text);
    number.Attach(number);
    const tagQXVALUE zero = {};
    for (const CQXVariant* v : {&text, &number}) {
        EXPECT_EQ(v->type, QXVT_EMPTY);
        EXPECT_EQ(memcmp(&v->value, &zero, sizeof zero), 0);
    }
}

TEST(VariantTest, DetachGivesOwnershipToTheCaller) {
    CQXVariant v("abc");
    char* text = v;
    tagQXVARIANT record = v.Detach();
    EXPECT_EQ(v.type, 0);
    EXPECT_EQ(v.value.string, text);
    EXPECT_EQ(record.type, 10);
    EXPECT_EQ(record.value.string, text);
    QXVariantClear(&record);
}

TEST(VariantTest, CastsReadTheValueAreaWithoutATest) {
    CQXVariant v(0x12345678);
    EXPECT_EQ(static_cast<unsigned char>(v), 0x78);
    EXPECT_EQ(static_cast<unsigned short>(v), 0x5678);
    EXPECT_EQ(static_cast<long>(v), 0x12345678);
    EXPECT_EQ(static_cast<unsigned long>(v), 0x12345678ul);
    EXPECT_EQ(static_cast<unsigned int>(v), 0x12345678u);
    EXPECT_EQ(static_cast<tagSIZE>(v).cx, 0x12345678);
    EXPECT_EQ(static_cast<tagSIZE>(v).cy, 0);
    CQXVariant real(1.0f);
    EXPECT_EQ(static_cast<int>(real), 0x3F800000);
}

TEST(VariantTest, PointerCastsGiveWhatTheVariantStillOwns) {
    Probe probe;
    CQXVariant text("abc"), blob(kAbc), object(static_cast<IQXUnknown*>(probe));
    EXPECT_EQ(static_cast<char*>(text), text.value.string);
    EXPECT_EQ(static_cast<tagQXBLOB>(blob).data, blob.value.blob.data);
    EXPECT_EQ(static_cast<IQXUnknown*>(object), object.value.unknown);
    EXPECT_EQ(probe.Refs(), 2u);
}

TEST(VariantTest, ChangeTypeToTheTypeItHasDoesNothing) {
    CQXVariant v("abc");
    const char* text = v;
    EXPECT_EQ(v.ChangeType(10), 1);
    EXPECT_EQ(v.ChangeType(10, &v), 1);
    EXPECT_EQ(TextOf(v), text);
}

TEST(VariantTest, ChangeTypeConvertsItselfOrAnother) {
    CQXVariant v(5), other("17");
    EXPECT_EQ(v.ChangeType(QXVT_STRING), 1);
    EXPECT_STREQ(TextOf(v), "5");
    EXPECT_EQ(v.ChangeType(QXVT_INT, &other), 1);
    EXPECT_EQ(static_cast<int>(v), 17);
    EXPECT_EQ(v.ChangeType(QXVT_INT, &other),
              1);  // another source is converted whatever type this one has
    EXPECT_EQ(v.ChangeType(QXVT_SIZE), 0);
    EXPECT_EQ(v.type, 5);
}

TEST(VariantTest, TheBindingMembersForward) {
    CQXVariant v(5);
    int variable = 0;
    EXPECT_EQ(v.BindToValue(QXVT_INT, &variable), 1);
    EXPECT_EQ(variable, 5);
    double real = 2.5;
    EXPECT_EQ(v.BindFromValue(QXVT_DOUBLE, &real), 1);
    EXPECT_EQ(v.type, 8);
    EXPECT_EQ(static_cast<double>(v), 2.5);
}
