// The old value of a variant goes last: what it calls at its end, and where the new value comes
// from.
#include "variant/variant_description.h"

#include <gtest/gtest.h>
#include <qxcore/exception.h>
#include <qxcore/heap.h>
#include <qxcore/string.h>

#include <cstring>
#include <functional>
#include <memory>
#include <vector>

namespace {

// Acts at its end, and may raise then.
class Last : public CQXUnknownImpl<IQXUnknown> {
public:
    explicit Last(std::function<void()> act, int code = 0) : m_act(std::move(act)), m_code(code) {}
    ~Last() override {
        if (m_act) m_act();
    }
    unsigned Release() override {
        int code = m_code;
        if (unsigned refs = InternalRelease()) return refs;
        if (code) throw CXException(code);
        return 0;
    }

private:
    std::function<void()> m_act;
    int m_code;
};

// Puts the only reference on such an object into the variant.
void Hold(CQXVariant& v, std::function<void()> act, int code = 0) {
    IQXUnknown* object = new Last(std::move(act), code);
    v = object;
    object->AddRef();  // not the last release
    object->Release();
    object->Release();
}

struct Way {
    const char* name;
    std::function<void(CQXVariant&)> replace;
    const char* result;
};

char g_abc[] = "abc";

// All ways to give a variant another value.
std::vector<Way> Ways() {
    static CQXVariant text("new"), number(7);
    static const char* variable = "new";
    static int plain = 7;
    static Last object(nullptr);
    return {
        {"copy of an owner", [](CQXVariant& v) { QXVariantCopy(&v, &text); }, "TEXT new"},
        {"copy of a number", [](CQXVariant& v) { QXVariantCopy(&v, &number); }, "INT 7"},
        {"variant", [](CQXVariant& v) { v = text; }, "TEXT new"},
        {"pointer to a variant", [](CQXVariant& v) { v = &number; }, "INT 7"},
        {"text", [](CQXVariant& v) { v = "new"; }, "TEXT new"},
        {"string", [](CQXVariant& v) { v = CXString("new"); }, "TEXT new"},
        {"object", [](CQXVariant& v) { v = static_cast<IQXUnknown*>(&object); }, nullptr},
        {"blob", [](CQXVariant& v) { v = tagQXBLOB{3, g_abc}; }, nullptr},
        {"number", [](CQXVariant& v) { v = 7; }, "INT 7"},
        {"double", [](CQXVariant& v) { v = 7.5; }, nullptr},
        {"rectangle", [](CQXVariant& v) { v = tagRRECT{1, 2, 3, 4}; }, nullptr},
        {"attached",
         [](CQXVariant& v) {
             tagQXVARIANT made = CQXVariant("new").Detach();
             v.Attach(made);
         },
         "TEXT new"},
        {"converted", [](CQXVariant& v) { v.ChangeType(QXVT_STRING, &number); }, "TEXT 7"},
        {"bound text", [](CQXVariant& v) { v.BindFromValue(QXVT_STRING, &variable); }, "TEXT new"},
        {"bound number", [](CQXVariant& v) { v.BindFromValue(QXVT_INT, &plain); }, "INT 7"},
    };
}

}  // namespace

TEST(ReplacementTest, AnObjectThatGoesFindsTheNewValueInTheVariant) {
    for (const Way& way : Ways()) {
        SCOPED_TRACE(way.name);
        CQXVariant v;
        std::string found;
        Hold(v, [&] { found = Describe(v); });
        way.replace(v);
        EXPECT_EQ(found, Describe(v));
        if (way.result) {
            EXPECT_EQ(found, way.result);
        }
    }
}

TEST(ReplacementTest, AnObjectThatGoesMayReplaceTheNewValue) {
    for (const Way& way : Ways()) {
        SCOPED_TRACE(way.name);
        CQXVariant v;
        Hold(v, [&] { v = "from the end"; });
        way.replace(v);
        EXPECT_EQ(Describe(v), "TEXT from the end");
    }
}

TEST(ReplacementTest, WhatTheOldObjectsReleaseRaisesReachesTheCallerWithTheNewValueInPlace) {
    for (const Way& way : Ways()) {
        SCOPED_TRACE(way.name);
        CQXVariant v, expected;
        way.replace(expected);
        Hold(v, nullptr, 2);
        EXPECT_THROW(way.replace(v), CXException);
        EXPECT_EQ(Describe(v), Describe(expected));
    }
}

TEST(ReplacementTest, ClearingPassesOnWhatTheReleaseRaisesAndADestructorDropsIt) {
    CQXVariant v;
    Hold(v, nullptr, 2);
    EXPECT_THROW(v.Clear(), CXException);
    EXPECT_EQ(Describe(v), "EMPTY");
    Hold(v, nullptr, 2);
    EXPECT_THROW(QXVariantClear(&v), CXException);
    EXPECT_EQ(Describe(v), "EMPTY");
    CQXVariant dropped;
    Hold(dropped, nullptr, 2);
}

TEST(ReplacementTest, ASourceMayLieInTheObjectThatGoes) {
    struct Inner {
        CQXVariant text{"inner"};
        tagQXBLOB blob{3, g_abc};
    };
    std::vector<std::function<void(CQXVariant&, Inner&)>> ways = {
        [](CQXVariant& v, Inner& inner) { QXVariantCopy(&v, &inner.text); },
        [](CQXVariant& v, Inner& inner) { v = inner.text; },
        [](CQXVariant& v, Inner& inner) { v.Attach(inner.text); },
        [](CQXVariant& v, Inner& inner) { v.ChangeType(QXVT_STRING, &inner.text); },
        [](CQXVariant& v, Inner& inner) { v.BindFromValue(QXVT_STRING, &inner.text.value.string); },
    };
    for (auto& way : ways) {
        CQXVariant v;
        auto inner = std::make_unique<Inner>();
        Inner& source = *inner;
        Hold(v, [&] { inner.reset(); });
        way(v, source);
        EXPECT_EQ(Describe(v), "TEXT inner");
        EXPECT_EQ(inner, nullptr);
    }
}

TEST(ReplacementTest, ASourceMayLieInTheBytesThatGo) {
    tagQXVARIANT record = CQXVariant("inner").Detach();
    CQXVariant v(tagQXBLOB{sizeof record, &record});
    v = static_cast<const tagQXVARIANT*>(v.value.blob.data);
    EXPECT_EQ(Describe(v), "TEXT inner");
    QXVariantClear(&record);
}

TEST(ReplacementTest, AConversionInPlaceShowsItsResultToWhomEndsWithIt) {
    CQXVariant v;
    std::string found = "nobody looked";
    Hold(v, [&] { found = Describe(v); });
    EXPECT_EQ(v.ChangeType(QXVT_UNKNOWN_REF), 1);
    EXPECT_EQ(found, "BORROWED");
}

TEST(ReplacementTest, ABlobMayBeAssignedFromItsOwnBytes) {
    char text[] = "abcdef";
    tagQXBLOB inner{6, text};
    QXBlob blob(tagQXBLOB{sizeof inner, &inner});
    blob = static_cast<const tagQXBLOB*>(blob.data);
    ASSERT_EQ(blob.size, 6u);
    EXPECT_EQ(memcmp(blob.data, "abcdef", 6), 0);
    tagQXBLOB view = blob;
    blob = view;  // the same block
    ASSERT_EQ(blob.size, 6u);
    EXPECT_EQ(memcmp(blob.data, "abcdef", 6), 0);
}

// ---- binding from the variant itself

TEST(BindFromValueTest, AVariableInTheVariantItselfIsClearedBeforeItIsLoaded) {
    CQXVariant blob(tagQXBLOB{3, g_abc});
    EXPECT_EQ(blob.BindFromValue(QXVT_BLOB, &blob.value.blob), 1);
    EXPECT_EQ(blob.type, QXVT_BLOB);
    EXPECT_EQ(blob.value.blob.size, 0u);
    EXPECT_EQ(blob.value.blob.data, nullptr);

    CQXVariant text("text");
    EXPECT_EQ(text.BindFromValue(QXVT_STRING, &text.value.string), 1);
    EXPECT_EQ(text.type, QXVT_STRING);
    EXPECT_EQ(text.value.string, nullptr);

    bool gone = false;
    CQXVariant object;
    Hold(object, [&] { gone = true; });
    EXPECT_EQ(object.BindFromValue(QXVT_UNKNOWN, &object.value.unknown), 1);
    EXPECT_TRUE(gone);
    EXPECT_EQ(object.type, QXVT_UNKNOWN);
    EXPECT_EQ(object.value.unknown, nullptr);

    CQXVariant number(7), rectangle(tagRRECT{1, 2, 3, 4});
    EXPECT_EQ(number.BindFromValue(QXVT_LONG, &number.value.longVal), 1);
    EXPECT_EQ(Describe(number), Describe(CQXVariant(0l)));
    EXPECT_EQ(rectangle.BindFromValue(QXVT_DOUBLE, &rectangle.value.rrect.bottom), 1);
    EXPECT_EQ(Describe(rectangle), Describe(CQXVariant(0.0)));
}

TEST(BindFromValueTest, ABlobThatIsHandedOverToItsOwnerStaysWithIt) {
    CQXVariant v(tagQXBLOB{3, g_abc});
    tagQXBLOB variable;
    v.BindToValue(QXVT_BLOB, &variable);
    variable.size = 2;
    EXPECT_EQ(v.BindFromValue(QXVT_BLOB, &variable), 1);
    EXPECT_EQ(v.value.blob.size, 2u);
    EXPECT_EQ(memcmp(v.value.blob.data, "ab", 2), 0);
}

TEST(BindToValueTest, AVariableMayLieInTheVariantItself) {
    CQXVariant text("text");
    EXPECT_EQ(text.BindToValue(QXVT_STRING, &text.value.string), 1);
    EXPECT_EQ(Describe(text), "TEXT text");
    int ends = 0;
    {
        CQXVariant object;
        Hold(object, [&] { ++ends; });
        EXPECT_EQ(object.BindToValue(QXVT_UNKNOWN, &object.value.unknown), 1);
        EXPECT_EQ(ends, 0);
    }
    EXPECT_EQ(ends, 1);
}
