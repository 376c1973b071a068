// Broken ini text, and broken text that it includes: the reader ends, what it made can be walked
// and cleared, and nothing but its own exceptions comes out. The rounds run under a
// double-byte code page, under none, and under the process's own.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <mbctype.h>

namespace {

using qx::Reference;

constexpr char kFile[] = "ini_text_fuzz.ini";
// Includes nothing: a file that includes itself is the caller's affair.
constexpr char kIncluded[] = "ini_text_part.ini";
constexpr const char* kIncludes[] = {"#include ini_text_part.ini\r\n",
                                     "# INCLUDE \"ini_text_part.ini\" |k=i1|",
                                     "#include .\\ini_text_part.ini|"};

constexpr const char* kPieces[] = {
    "[\\]\r\n",   "[\\a\\b]\r\n", "[",       "]",        "key=i5\r\n", "=",        "|",
    ";",          "#include ",    "\"",      "\n",       "\r\n",       "t1,2,3,4", "R2.5",
    "fY",         "b1F",          "w0x10",   "stext",    "\x83\x5C",   "\x81\x40", "\x83",
    "\\",         "# x",          "e",       "p3,4\r\n", "z",          "\t ",      "W-1\r\n",
    "r1e400\r\n", "T1,2,3",       "u",       "P,,\r\n",  "k\r\n",      "name=",    "[\\s]|k=",
    "[]",         "\xE3\x82\xBD", "\xE3\x82"};

std::string RandomText(Random& random, bool includes) {
    std::string text = random.Below(4) ? "[\\]\r\n" : "";
    for (unsigned n = random.Below(60); n > 0; --n) {
        text += kPieces[random.Below(std::size(kPieces))];
        if (random.Below(20) == 0) text += '\0';
        if (includes && random.Below(30) == 0)
            text += kIncludes[random.Below(std::size(kIncludes))];
    }
    if (random.Below(20) == 0)
        text.insert(random.Below(unsigned(text.size()) + 1), 8150 + random.Below(100), 'x');
    if (random.Below(2)) Mutate(text, random);
    return text;
}

void WriteFile(const char* name, const std::string& text) {
    FILE* file = fopen(name, "wb");
    fwrite(text.data(), 1, text.size(), file);
    fclose(file);
}

// Every name leads to its value or child, and the counts are told.
unsigned Walk(IParam* node, unsigned depth) {
    unsigned found = 0;
    const char* name;
    Reference<CTEnum<const char*>> values(node->EnumValues());
    while (values->Next(1, &name, nullptr)) {
        CQXVariant value;
        found += node->GetValue(name, &value);
    }
    Reference<CTEnum<const char*>> children(node->EnumSubParams());
    while (depth < 50 && children->Next(1, &name, nullptr)) {
        Reference<IParam> child(node->OpenSubParam(name, 0));
        if (child) found += Walk(child.Get(), depth + 1);
    }
    return found;
}

bool Round(Random& random) {
    constexpr int kCodePages[] = {932, _MB_CP_SBCS, _MB_CP_ANSI};
    _setmbcp(kCodePages[random.Below(3)]);
    WriteFile(kFile, RandomText(random, true));
    WriteFile(kIncluded, RandomText(random, false));
    Reference<IParam> root(new_MemParam());
    try {
        Param_IniFile2Param(kFile, root.Get());
    } catch (CXException&) {
    }
    Walk(root.Get(), 0);
    root->Clear();
    return Walk(root.Get(), 0) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    int result = fuzz::Main(argc, argv, 1000, Round);
    remove(kFile);
    remove(kIncluded);
    return result;
}
