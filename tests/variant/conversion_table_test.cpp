// Every source code against every target code, with the outcome spelled out for each pair.
#include "variant/probe_object.h"
#include "variant/variant_description.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr int kCodes = 20;

const unsigned short kTargets[kCodes] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,
                                         10, 11, 12, 13, 14, 15, 16, 17, 18, QXVT_UNKNOWN_REF};

// One source value and what it gives as each target; null stands for a failure.
struct Row {
    const char* source;
    const char* outcomes[kCodes];
};

constexpr const char* no = nullptr;

const Row kRows[] = {
    {"EMPTY", {"EMPTY",  "BOOL 0",   "UI1 0",   "UI2 0", "ULONG 0", "INT 0", "UINT 0",
               "LONG 0", "DOUBLE 0", "FLOAT 0", "TEXT ", no,        no,      no,
               no,       no,         no,        no,      no,        no}},
    // Not 1 or 0, as a raw record may hold: 0x12345.
    {"BOOL 74565",
     {"EMPTY",
      "BOOL 74565",
      "UI1 69",
      "UI2 9029",
      "ULONG 74565",
      "INT 74565",
      "UINT 74565",
      "LONG 74565",
      "DOUBLE 74565",
      "FLOAT 74565",
      "TEXT Yes",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    {"BOOL 0", {"EMPTY",  "BOOL 0",   "UI1 0",   "UI2 0",   "ULONG 0", "INT 0", "UINT 0",
                "LONG 0", "DOUBLE 0", "FLOAT 0", "TEXT No", no,        no,      no,
                no,       no,         no,        no,        no,        no}},
    {"BOOL -1",
     {"EMPTY",
      "BOOL -1",
      "UI1 255",
      "UI2 65535",
      "ULONG 4294967295",
      "INT -1",
      "UINT 4294967295",
      "LONG -1",
      "DOUBLE -1",
      "FLOAT -1",
      "TEXT Yes",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    {"UI1 200",
     {"EMPTY",    "BOOL 1",     "UI1 200",   "UI2 200",  "ULONG 200", "INT 200", "UINT 200",
      "LONG 200", "DOUBLE 200", "FLOAT 200", "TEXT 200", no,          no,        no,
      no,         no,           no,          no,         no,          no}},
    // 0xC822
    {"UI2 51234",
     {"EMPTY",
      "BOOL 1",
      "UI1 34",
      "UI2 51234",
      "ULONG 51234",
      "INT 51234",
      "UINT 51234",
      "LONG 51234",
      "DOUBLE 51234",
      "FLOAT 51234",
      "TEXT 51234",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    // 0xEE6B2800
    {"ULONG 4000000000",
     {"EMPTY",
      "BOOL 1",
      "UI1 0",
      "UI2 10240",
      "ULONG 4000000000",
      "INT -294967296",
      "UINT 4000000000",
      "LONG -294967296",
      "DOUBLE 4000000000",
      "FLOAT 4000000000",
      "TEXT 4000000000",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    {"INT -2",
     {"EMPTY",
      "BOOL 1",
      "UI1 254",
      "UI2 65534",
      "ULONG 4294967294",
      "INT -2",
      "UINT 4294967294",
      "LONG -2",
      "DOUBLE -2",
      "FLOAT -2",
      "TEXT -2",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    // The nearest float is 2 to the power of 32.
    {"UINT 4294967295",
     {"EMPTY",
      "BOOL 1",
      "UI1 255",
      "UI2 65535",
      "ULONG 4294967295",
      "INT -1",
      "UINT 4294967295",
      "LONG -1",
      "DOUBLE 4294967295",
      "FLOAT 4294967296",
      "TEXT 4294967295",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    // 0xFFFEEE90
    {"LONG -70000",
     {"EMPTY",
      "BOOL 1",
      "UI1 144",
      "UI2 61072",
      "ULONG 4294897296",
      "INT -70000",
      "UINT 4294897296",
      "LONG -70000",
      "DOUBLE -70000",
      "FLOAT -70000",
      "TEXT -70000",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    {"DOUBLE -3.9",
     {"EMPTY",
      "BOOL 1",
      no,
      no,
      no,
      "INT -3",
      "UINT 4294967293",
      "LONG -3",
      "DOUBLE -3.9",
      "FLOAT -3.900000095",
      "TEXT -3.9",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    {"DOUBLE 0",
     {"EMPTY",  "BOOL 0", no, no, no, "INT 0", "UINT 0", "LONG 0", "DOUBLE 0", "FLOAT 0",
      "TEXT 0", no,       no, no, no, no,      no,       no,       no,         no}},
    {"FLOAT 2.5",
     {"EMPTY",    "BOOL 1", no, no, no, "INT 2", "UINT 2", "LONG 2", "DOUBLE 2.5", "FLOAT 2.5",
      "TEXT 2.5", no,       no, no, no, no,      no,       no,       no,           no}},
    {"TEXT 12.5abc",
     {"EMPTY",
      no,
      no,
      no,
      no,
      "INT 12",
      "UINT 12",
      "LONG 12",
      "DOUBLE 12.5",
      "FLOAT 12.5",
      "TEXT 12.5abc",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no}},
    {"TEXT Yes",
     {"EMPTY", no, no, no, no, no, no, no, no, no, "TEXT Yes", no, no, no, no, no, no, no, no, no}},
    {"SIZE 7,-8", {"EMPTY", no,          no,           no, no, no, no, no, no, no,
                   no,      "SIZE 7,-8", "RSIZE 7,-8", no, no, no, no, no, no, no}},
    {"RSIZE 3.5,-3.5", {"EMPTY",          no, no, no, no, no, no, no, no, no, no, "SIZE 4,-3",
                        "RSIZE 3.5,-3.5", no, no, no, no, no, no, no}},
    {"POINT 7,-8", {"EMPTY",       no, no, no, no, no, no, no, no, no, no, no, no, "POINT 7,-8",
                    "RPOINT 7,-8", no, no, no, no, no}},
    {"RPOINT 3.5,-3.5",
     {"EMPTY",           no, no, no, no, no, no, no, no, no, no, no, no, "POINT 4,-3",
      "RPOINT 3.5,-3.5", no, no, no, no, no}},
    {"RECT 0,1,10,20",
     {"EMPTY",          no, no, no, no, no, no, no, no, no, no, no, no, no, no, "RECT 0,1,10,20",
      "RRECT 0,1,9,19", no, no, no}},
    {"RRECT -0.5,0.5,9,19.6",
     {"EMPTY",
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      no,
      "RECT 0,1,10,21",
      "RRECT -0.5,0.5,9,19.6",
      no,
      no,
      no}},
    {"BLOB 3 abc", {"EMPTY", no, no, no, no, no, no, no,           no, no,
                    no,      no, no, no, no, no, no, "BLOB 3 abc", no, no}},
    {"BLOB 3 null", {"EMPTY",       no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no,
                     "BLOB 3 null", no, no}},
    {"OBJECT", {"EMPTY", no, no, no, no, no, no, no, no,       no,
                no,      no, no, no, no, no, no, no, "OBJECT", "BORROWED"}},
    {"OBJECT null", {"EMPTY",
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     no,
                     "OBJECT null",
                     "BORROWED null"}},
    {"BORROWED", {"EMPTY",        "BOOL 0",        "UI1 0",       "UI2 0",       "ULONG 0",
                  "INT 0",        "UINT 0",        "LONG 0",      "DOUBLE 0",    "FLOAT 0",
                  "TEXT null",    "SIZE 0,0",      "RSIZE 0,0",   "POINT 0,0",   "RPOINT 0,0",
                  "RECT 0,0,0,0", "RRECT 0,0,0,0", "BLOB 0 null", "OBJECT null", "BORROWED null"}},
    {"CODE 19", {"EMPTY",        "BOOL 0",        "UI1 0",       "UI2 0",       "ULONG 0",
                 "INT 0",        "UINT 0",        "LONG 0",      "DOUBLE 0",    "FLOAT 0",
                 "TEXT null",    "SIZE 0,0",      "RSIZE 0,0",   "POINT 0,0",   "RPOINT 0,0",
                 "RECT 0,0,0,0", "RRECT 0,0,0,0", "BLOB 0 null", "OBJECT null", "BORROWED null"}},
};

CQXVariant Coded(unsigned short type, IQXUnknown* object) {
    CQXVariant v;
    v.type = type;
    v.value.unknown = object;
    return v;
}

CQXVariant Bool(int number) {
    CQXVariant v(1, 1);
    v.value.boolVal = number;
    return v;
}

// The sources of the rows, in the order of the rows.
std::vector<CQXVariant> Sources(IQXUnknown* object) {
    static char abc[] = "abc";
    return {
        CQXVariant(),
        Bool(0x12345),
        Bool(0),
        Bool(-1),
        static_cast<unsigned char>(200),
        static_cast<unsigned short>(0xC822),
        4000000000ul,
        -2,
        4294967295u,
        -70000l,
        -3.9,
        0.0,
        2.5f,
        "12.5abc",
        "Yes",
        tagSIZE{7, -8},
        tagRSIZE{3.5, -3.5},
        tagPOINT{7, -8},
        tagRPOINT{3.5, -3.5},
        tagRECT{0, 1, 10, 20},
        tagRRECT{-0.5, 0.5, 9, 19.6},
        tagQXBLOB{3, abc},
        tagQXBLOB{3, nullptr},
        object,
        static_cast<IQXUnknown*>(nullptr),
        Coded(QXVT_UNKNOWN_REF, object),
        Coded(19, object),
    };
}

}  // namespace

TEST(ConversionTableTest, EveryPairIntoAnotherRecord) {
    Probe probe;
    std::vector<CQXVariant> sources = Sources(probe);
    ASSERT_EQ(sources.size(), std::size(kRows));
    for (size_t row = 0; row < std::size(kRows); ++row) {
        EXPECT_EQ(Describe(sources[row]), kRows[row].source);
        for (int target = 0; target < kCodes; ++target) {
            SCOPED_TRACE(testing::Message() << kRows[row].source << " to " << kTargets[target]);
            const char* expected = kRows[row].outcomes[target];
            CQXVariant dest("old");
            EXPECT_EQ(QXVariantChangeType(&dest, &sources[row], kTargets[target]), expected != no);
            EXPECT_EQ(Describe(dest), expected ? expected : "EMPTY");
            EXPECT_EQ(Describe(sources[row]), kRows[row].source);
        }
    }
    sources.clear();
    EXPECT_EQ(probe.Refs(), 1u);
}

TEST(ConversionTableTest, EveryPairInPlace) {
    Probe probe;
    std::vector<CQXVariant> sources = Sources(probe);
    for (size_t row = 0; row < std::size(kRows); ++row) {
        for (int target = 0; target < kCodes; ++target) {
            SCOPED_TRACE(testing::Message() << kRows[row].source << " to " << kTargets[target]);
            const char* expected = kRows[row].outcomes[target];
            CQXVariant v(sources[row]);
            EXPECT_EQ(QXVariantChangeType(&v, &v, kTargets[target]), expected != no);
            EXPECT_EQ(Describe(v), expected ? expected : kRows[row].source);
        }
    }
    sources.clear();
    EXPECT_EQ(probe.Refs(), 1u);
}

TEST(ConversionTableTest, EveryCodeStandsInTheTable) {
    Probe probe;
    std::vector<CQXVariant> sources = Sources(probe);
    for (unsigned short code : kTargets) {
        bool found = false;
        for (const CQXVariant& source : sources) found = found || source.type == code;
        EXPECT_TRUE(found) << code;
    }
}

TEST(ConversionTableTest, TargetsWithoutAConverterFail) {
    Probe probe;
    for (CQXVariant& source : Sources(probe)) {
        for (unsigned short target : {19, 20, 0x3FFF, 0x4001, 0x4012, 0x8000, 0xFFFF}) {
            SCOPED_TRACE(testing::Message() << Describe(source) << " to " << target);
            std::string before = Describe(source);
            CQXVariant dest("old");
            EXPECT_EQ(QXVariantChangeType(&dest, &source, target), 0);
            EXPECT_EQ(dest.type, 0);
            if (source.type != target) {
                EXPECT_EQ(QXVariantChangeType(&source, &source, target), 0);
                EXPECT_EQ(Describe(source), before);
            }
        }
    }
}
