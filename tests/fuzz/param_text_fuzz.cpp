// Broken texts of trees: what Param_String2Param made can be walked, and written as a text it gives
// a tree that is written alike from then on.
#include "fuzz/fuzz_driver.h"
#include "fuzz/param_walk.h"

#include <mbctype.h>

namespace {

constexpr const char* kPieces[] = {"[\\]|", "[\\a\\b]|", "[",        "]",        "key=i5|",
                                   "=",     "|",         ";",        "#inc",     "\n",
                                   "\r\n",  "stext",     "\x83\x5C", "\x81",     "\x81\x40",
                                   "w0x10", "t1,2,3,4",  "R2.5",     "fY",       "b1F",
                                   "\\",    "e",         "p3,4|",    "\t ",      "r1e400",
                                   "W-1|",  "k|",        "a\\b=",    "[\\s]|k=", "[]",
                                   "=s",    "name=sx|",  "R.1",      "T1,2,3,4", "\xE3\x81"};

std::string RandomText(Random& random) {
    std::string text = random.Below(4) ? "[\\]|" : "";
    for (unsigned n = random.Below(60); n > 0; --n) {
        text += kPieces[random.Below(std::size(kPieces))];
    }
    if (random.Below(20) == 0)
        text.insert(random.Below(unsigned(text.size()) + 1), 8150 + random.Below(100), 'x');
    if (random.Below(2)) Mutate(text, random);
    // An include reads whatever file of that name there is.
    for (size_t at; (at = text.find('#')) != std::string::npos;) text[at] = '$';
    return text;
}

bool Round(Random& random) {
    if (random.Below(2)) _setmbcp(random.Below(2) ? 932 : _MB_CP_SBCS);
    CXString text(RandomText(random).c_str());
    qx::Reference<IParam> root(new_MemParam());
    try {
        if (Param_String2Param(text, root.Get()) != 1) return false;
    } catch (CXException&) {
    }
    ReadTree(root.Get());
    CXString written;
    return Param_Param2String(root.Get(), written) == 1 && strncmp(written, "[\\]|", 4) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 2000, Round);
}
