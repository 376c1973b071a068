#include "variant/number_text.h"

#include "variant/value_block.h"

#include <qxcore/string.h>

#include <cstdio>

namespace qx {

namespace {

constexpr int kSafeDigits = 9;  // fit 32 bits whatever they are

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads 1 to 9 digits; anything else is left to the runtime.
bool ReadDigits(const char* text, unsigned& number) {
    unsigned n = 0;
    int digits = 0;
    for (; IsDigit(text[digits]); ++digits) {
        if (digits == kSafeDigits) return false;
        n = n * 10 + static_cast<unsigned>(text[digits] - '0');
    }
    number = n;
    return digits > 0;
}

const char* SkipSpace(const char* text) {
    while (IsSpace(*text)) ++text;
    return text;
}

template <class T>
bool ScanByRuntime(const char* text, const char* format, T& number) {
    T scanned;
    if (!text || sscanf(text, format, &scanned) != 1) return false;
    number = scanned;
    return true;
}

int CountDigits(unsigned number) {
    constexpr unsigned kPowersOfTen[] = {10,      100,      1000,      10000,     100000,
                                         1000000, 10000000, 100000000, 1000000000};
    int digits = 1;
    for (unsigned power : kPowersOfTen) {
        if (number < power) break;
        ++digits;
    }
    return digits;
}

char* NewDigits(unsigned magnitude, bool negative) {
    int length = CountDigits(magnitude) + negative;
    auto text = static_cast<char*>(AllocValue(static_cast<size_t>(length) + 1));
    char* at = text + length;
    *at = 0;
    do {
        *--at = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude);
    if (negative) *--at = '-';
    return text;
}

char* NewFormatted(const char* format, double number) {
    CXString text;
    text.Format(format, number);
    return CopyText(text);
}

}  // namespace

bool ScanNumber(const char* text, int& number) {
    if (!text) return false;
    const char* at = SkipSpace(text);
    bool negative = *at == '-';
    unsigned magnitude;
    if (!ReadDigits(at + negative, magnitude)) return ScanByRuntime(text, "%d", number);
    number = negative ? -static_cast<int>(magnitude) : static_cast<int>(magnitude);
    return true;
}

bool ScanNumber(const char* text, unsigned& number) {
    if (!text) return false;
    return ReadDigits(SkipSpace(text), number) || ScanByRuntime(text, "%u", number);
}

bool ScanNumber(const char* text, double& number) {
    return ScanByRuntime(text, "%lf", number);
}

bool ScanNumber(const char* text, float& number) {
    return ScanByRuntime(text, "%f", number);
}

char* NewNumberText(int number) {
    bool negative = number < 0;
    return NewDigits(negative ? 0u - static_cast<unsigned>(number) : static_cast<unsigned>(number),
                     negative);
}

char* NewNumberText(unsigned number) {
    return NewDigits(number, false);
}

char* NewNumberText(double number) {
    return NewFormatted("%lg", number);
}

char* NewNumberText(float number) {
    return NewFormatted("%g", number);
}

}  // namespace qx
