// Copying and converting variants beside OLE's VARIANT and the standard library's any and variant.
#include "bench/measure.h"

#include <qxcore.h>

#include <oleauto.h>

#include <any>
#include <string>
#include <variant>

namespace {

constexpr char kText[] = "a text that has 32 characters...";
static_assert(sizeof kText == 33);

using Standard = std::variant<int, double, std::string>;

class OleVariant {
public:
    explicit OleVariant(int number) {
        VariantInit(&value);
        value.vt = VT_I4;
        value.lVal = number;
    }
    explicit OleVariant(const wchar_t* text) {
        VariantInit(&value);
        value.vt = VT_BSTR;
        value.bstrVal = SysAllocString(text);
    }
    OleVariant(const OleVariant&) = delete;
    OleVariant& operator=(const OleVariant&) = delete;
    ~OleVariant() { VariantClear(&value); }

    mutable VARIANT value;  // OLE takes its sources by plain pointer
};

template <class T>
auto CopyAndDrop(const T& source) {
    return [&source] {
        bench::Keep(source);
        T copy(source);
        bench::Keep(copy);
    };
}

auto CopyAndDropOle(const OleVariant& source) {
    return [&source] {
        VARIANT copy;
        VariantInit(&copy);
        VariantCopy(&copy, &source.value);
        bench::Keep(copy);
        VariantClear(&copy);
    };
}

void BenchCopy() {
    CQXVariant number(5), text(kText);
    OleVariant oleNumber(5), oleText(L"a text that has 32 characters...");
    std::any anyNumber(5), anyText(std::string{kText});
    Standard standardNumber(5), standardText(std::string{kText});

    bench::Compare("variant copy, int", "VariantCopy", CopyAndDrop(number),
                   CopyAndDropOle(oleNumber));
    bench::Compare("variant copy, int", "std::any", CopyAndDrop(number), CopyAndDrop(anyNumber));
    bench::Compare("variant copy, int", "std::variant", CopyAndDrop(number),
                   CopyAndDrop(standardNumber));
    bench::Compare("variant copy, text of 32", "VariantCopy", CopyAndDrop(text),
                   CopyAndDropOle(oleText));
    bench::Compare("variant copy, text of 32", "std::any", CopyAndDrop(text), CopyAndDrop(anyText));
    bench::Compare("variant copy, text of 32", "std::variant", CopyAndDrop(text),
                   CopyAndDrop(standardText));
}

auto ConvertTo(unsigned short type, const CQXVariant& source) {
    return [type, &source] {
        CQXVariant dest;
        QXVariantChangeType(&dest, &source, type);
        bench::Keep(dest);
    };
}

auto ConvertToOle(VARTYPE type, const OleVariant& source) {
    return [type, &source] {
        VARIANT dest;
        VariantInit(&dest);
        VariantChangeType(&dest, &source.value, 0, type);
        bench::Keep(dest);
        VariantClear(&dest);
    };
}

void BenchConversion() {
    CQXVariant number(1234567), text("1234567");
    OleVariant oleNumber(1234567), oleText(L"1234567");
    bench::Compare("convert int to double", "VariantChangeType", ConvertTo(QXVT_DOUBLE, number),
                   ConvertToOle(VT_R8, oleNumber));
    bench::Compare("convert int to text", "VariantChangeType", ConvertTo(QXVT_STRING, number),
                   ConvertToOle(VT_BSTR, oleNumber));
    bench::Compare("convert text to int", "VariantChangeType", ConvertTo(QXVT_INT, text),
                   ConvertToOle(VT_I4, oleText));
}

}  // namespace

int main() {
    BenchCopy();
    BenchConversion();
}
