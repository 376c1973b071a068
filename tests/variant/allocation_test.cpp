// Every allocation of the variants' operations fails once.
#include "support/allocation_failure.h"
#include "variant/variant_description.h"

#include <gtest/gtest.h>
#include <qxcore/heap.h>
#include <qxcore/string.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

char g_abc[] = "abc";
const tagQXBLOB kAbc = {3, g_abc};

using Subject = std::unique_ptr<CQXVariant>;

// Lets `act` fail on a variant that holds `before`; the variant must then still hold it, or be
// empty, and be usable.
template <class Act>
void ExpectSafe(const CQXVariant& before, Act act, bool keepsItsValue) {
    std::string expected = keepsItsValue ? Describe(before) : "EMPTY";
    unsigned failures = FailEachAllocation([&] { return std::make_unique<CQXVariant>(before); },
                                           [&](Subject& v) { act(*v); },
                                           [&](Subject& v) {
                                               EXPECT_EQ(Describe(*v), expected);
                                               *v = "usable";
                                               EXPECT_EQ(Describe(*v), "TEXT usable");
                                           });
    EXPECT_GT(failures, 0u);
}

constexpr bool kKept = true, kEmptied = false;

// One variant of each type that has a text.
std::vector<CQXVariant> TextSources() {
    return {CQXVariant(),
            CQXVariant(1, 1),
            static_cast<unsigned char>(2),
            static_cast<unsigned short>(3),
            4ul,
            5,
            6u,
            7l,
            8.5,
            9.5f,
            "ten"};
}

}  // namespace

TEST(VariantAllocationTest, AnAssignmentThatFailsKeepsTheOldValue) {
    CXString string("string");
    ExpectSafe(
        "old", [](CQXVariant& v) { v = "text"; }, kKept);
    ExpectSafe(
        "old", [&](CQXVariant& v) { v = string; }, kKept);
    ExpectSafe(
        "old", [](CQXVariant& v) { v = kAbc; }, kKept);
}

TEST(VariantAllocationTest, ACopyThatFailsLeavesTheDestinationEmpty) {
    CQXVariant text("text"), blob(kAbc);
    ExpectSafe(
        "old", [&](CQXVariant& v) { v = text; }, kEmptied);
    ExpectSafe(
        "old", [&](CQXVariant& v) { QXVariantCopy(&v, &blob); }, kEmptied);
}

TEST(VariantAllocationTest, AConversionInPlaceThatFailsKeepsTheSource) {
    for (const CQXVariant& source : TextSources()) {
        ExpectSafe(
            source, [](CQXVariant& v) { QXVariantChangeType(&v, &v, QXVT_STRING); }, kKept);
    }
    ExpectSafe(
        kAbc, [](CQXVariant& v) { QXVariantChangeType(&v, &v, QXVT_BLOB); }, kKept);
}

TEST(VariantAllocationTest, AConversionThatFailsLeavesTheDestinationEmpty) {
    for (const CQXVariant& source : TextSources()) {
        ExpectSafe(
            "old", [&](CQXVariant& v) { QXVariantChangeType(&v, &source, QXVT_STRING); }, kEmptied);
    }
    CQXVariant blob(kAbc);
    ExpectSafe(
        "old", [&](CQXVariant& v) { v.ChangeType(QXVT_BLOB, &blob); }, kEmptied);
}

TEST(VariantAllocationTest, ABindingThatFailsKeepsBothSides) {
    const char* text = "text";
    ExpectSafe(
        "old", [&](CQXVariant& v) { v.BindFromValue(QXVT_STRING, &text); }, kKept);

    char* variable = static_cast<char*>(Mem_DefaultHeap(0)->Alloc(4));
    strcpy(variable, "old");
    CQXVariant v("new");
    {
        FailingAllocation failing(1);
        EXPECT_THROW(v.BindToValue(QXVT_STRING, &variable), CXMemException);
    }
    EXPECT_STREQ(variable, "old");
    EXPECT_EQ(v.BindToValue(QXVT_STRING, &variable), 1);
    EXPECT_STREQ(variable, "new");
    Mem_DefaultHeap(0)->Free(variable);
}

TEST(VariantAllocationTest, AConstructorThatFailsLeavesNothing) {
    CXString string("string");
    CQXVariant text("text"), blob(kAbc);
    auto none = [] { return 0; };
    auto nothing = [](int) {};
    EXPECT_GT(FailEachAllocation(
                  none, [](int) { CQXVariant("text"); }, nothing),
              0u);
    EXPECT_GT(FailEachAllocation(
                  none, [&](int) { CQXVariant{string}; }, nothing),
              0u);
    EXPECT_GT(FailEachAllocation(
                  none, [](int) { CQXVariant{kAbc}; }, nothing),
              0u);
    EXPECT_GT(FailEachAllocation(
                  none, [&](int) { CQXVariant{text}; }, nothing),
              0u);
    EXPECT_GT(FailEachAllocation(
                  none, [&](int) { CQXVariant{blob}; }, nothing),
              0u);
    EXPECT_GT(FailEachAllocation(
                  none, [](int) { QXBlob(100ul); }, nothing),
              0u);
    EXPECT_GT(FailEachAllocation(
                  none, [](int) { QXBlob{kAbc}; }, nothing),
              0u);
}

TEST(VariantAllocationTest, ABlobAssignmentThatFailsLeavesAnEmptyBlob) {
    unsigned failures = FailEachAllocation([] { return std::make_unique<QXBlob>(100ul); },
                                           [](std::unique_ptr<QXBlob>& blob) { *blob = kAbc; },
                                           [](std::unique_ptr<QXBlob>& blob) {
                                               EXPECT_EQ(blob->size, 0u);
                                               EXPECT_EQ(blob->data, nullptr);
                                           });
    EXPECT_GT(failures, 0u);
}

TEST(VariantAllocationTest, ComparisonAndNumericConversionTakeNoMemory) {
    CQXVariant blob(kAbc), other(kAbc), text("12"), number;
    FailingAllocation failing(1);
    EXPECT_TRUE(blob == other);
    EXPECT_EQ(number.ChangeType(QXVT_INT, &text), 1);
    EXPECT_FALSE(failing.Happened());
}
