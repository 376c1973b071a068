// Numbers from and to text beside the runtime's own scanner and Format: the same answers for
// everything.
#include <gtest/gtest.h>
#include <qxcore/string.h>
#include <qxcore/variant.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

namespace {

// Sets a numeric and character locale for a test.
class LocaleFor {
public:
    explicit LocaleFor(const char* name)
        : old(setlocale(LC_ALL, nullptr)), set(setlocale(LC_ALL, name) != nullptr) {}
    LocaleFor(const LocaleFor&) = delete;
    LocaleFor& operator=(const LocaleFor&) = delete;
    ~LocaleFor() { setlocale(LC_ALL, old.c_str()); }

    const std::string old;
    const bool set;
};

template <class T>
void ExpectScannedAsTheRuntimeDoes(const CQXVariant& text, const char* format,
                                   unsigned short target) {
    T expected{};
    int result = sscanf(text, format, &expected);
    CQXVariant dest;
    ASSERT_EQ(QXVariantChangeType(&dest, &text, target), result == 1)
        << "\"" << text.value.string << "\" by " << format;
    if (result == 1) {
        ASSERT_EQ(memcmp(&dest.value, &expected, sizeof expected), 0)
            << "\"" << text.value.string << "\" by " << format;
    }
}

void ExpectScannedAlike(const std::string& bytes) {
    CQXVariant text(bytes.c_str());
    ExpectScannedAsTheRuntimeDoes<int>(text, "%d", QXVT_INT);
    ExpectScannedAsTheRuntimeDoes<long>(text, "%d", QXVT_LONG);
    ExpectScannedAsTheRuntimeDoes<unsigned>(text, "%u", QXVT_UINT);
    ExpectScannedAsTheRuntimeDoes<double>(text, "%lf", QXVT_DOUBLE);
    ExpectScannedAsTheRuntimeDoes<float>(text, "%f", QXVT_FLOAT);
}

template <class T>
void ExpectFormattedAsTheRuntimeDoes(T number, const char* format) {
    CXString expected;
    expected.Format(format, number);
    CQXVariant v(number);
    ASSERT_EQ(v.ChangeType(QXVT_STRING), 1);
    ASSERT_STREQ(static_cast<char*>(v), expected);
}

void ExpectFormattedAlike(unsigned bits) {
    ExpectFormattedAsTheRuntimeDoes(static_cast<unsigned char>(bits), "%hu");
    ExpectFormattedAsTheRuntimeDoes(static_cast<unsigned short>(bits), "%u");
    ExpectFormattedAsTheRuntimeDoes(static_cast<unsigned long>(bits), "%u");
    ExpectFormattedAsTheRuntimeDoes(static_cast<int>(bits), "%d");
    ExpectFormattedAsTheRuntimeDoes(bits, "%u");
    ExpectFormattedAsTheRuntimeDoes(static_cast<long>(bits), "%d");
}

std::string RandomText(std::mt19937& random) {
    static const char kBytes[] =
        "0123456789012345678901234567890123456789+- \t\n\v\f\r.,eExXaf\xA0\x85\xFF";
    std::string text;
    for (unsigned length = random() % 16; length; --length)
        text += kBytes[random() % (sizeof kBytes - 1)];
    return text;
}

}  // namespace

TEST(NumberTextTest, IntegersBecomeTextAsByFormat) {
    for (unsigned power = 1; power; power = power > 400000000u ? 0 : power * 10) {
        for (unsigned neighbour :
             {power - 1, power, power + 1, 0u - power, 1u - power, 0u - power - 1}) {
            ExpectFormattedAlike(neighbour);
        }
    }
    for (int bit = 0; bit < 32; ++bit) ExpectFormattedAlike(1u << bit);
    std::mt19937 random(1);
    for (int i = 0; i < 5000; ++i)
        ExpectFormattedAlike(static_cast<unsigned>(random()) >> (random() % 32));
}

TEST(NumberTextTest, RealsBecomeTextAsByFormat) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 5000; ++i) {
        unsigned long long bits = random();
        double real;
        float single;
        memcpy(&real, &bits, sizeof real);
        memcpy(&single, &bits, sizeof single);
        ExpectFormattedAsTheRuntimeDoes(real, "%lg");
        CXString expected;
        expected.Format("%g", static_cast<double>(single));
        CQXVariant v(single);
        ASSERT_EQ(v.ChangeType(QXVT_STRING), 1);
        ASSERT_STREQ(static_cast<char*>(v), expected);
    }
}

TEST(NumberTextTest, TextsOfEveryLengthOfDigitsAreScannedAlike) {
    for (const char* sign : {"", "-", "+", "--", "- ", " -", " "}) {
        for (const char* digits :
             {"0", "9", "1234567890123456789012345678901234567890", "0000000000000000000000012",
              "2147483647", "2147483648", "4294967295", "4294967296", "99999999999"}) {
            for (size_t length = 0; length <= strlen(digits); ++length) {
                for (const char* tail : {"", " ", "x", "-", ".5", ",5", "e3", "\xA0"}) {
                    ExpectScannedAlike(sign + std::string(digits, length) + tail);
                }
            }
        }
    }
}

TEST(NumberTextTest, RandomTextsAreScannedAlike) {
    std::mt19937 random(3);
    for (int i = 0; i < 50000; ++i) ExpectScannedAlike(RandomText(random));
}

TEST(NumberTextTest, RandomTextsAreScannedAlikeInALocaleWithOtherSpacesAndACommaForThePoint) {
    LocaleFor german("German_Germany.1252");
    if (!german.set) GTEST_SKIP() << "the runtime has no German locale";
    std::mt19937 random(4);
    for (int i = 0; i < 20000; ++i) ExpectScannedAlike(RandomText(random));
    for (int i = 0; i < 1000; ++i) ExpectFormattedAlike(static_cast<unsigned>(random()));
}

TEST(NumberTextTest, TheLocalesDecimalSeparatorApplies) {
    LocaleFor german("German_Germany.1252");
    if (!german.set) GTEST_SKIP() << "the runtime has no German locale";
    CQXVariant real(2.5), text("2,5");
    EXPECT_EQ(real.ChangeType(QXVT_STRING), 1);
    EXPECT_STREQ(static_cast<char*>(real), "2,5");
    EXPECT_EQ(text.ChangeType(QXVT_DOUBLE), 1);
    EXPECT_EQ(static_cast<double>(text), 2.5);
}
