// Feeds broken files to the readers of the model.
//
//     tools_fuzz [ROUNDS [SEED]]      0 rounds go on until they are stopped; round n has the seed
//                                     SEED + n
#include "tests/tools/pe/image_builder.h"
#include "tests/tools/uses.h"
#include "tools/qxtranslate/platform/platform.h"

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

using Data = std::vector<uint8_t>;

void Mutate(Data& data, std::mt19937& random) {
    for (unsigned n = 1 + random() % 4; n > 0 && !data.empty(); --n) {
        size_t at = random() % data.size();
        switch (random() % 5) {
            case 0:
                data[at] ^= static_cast<uint8_t>(1 << random() % 8);
                break;
            case 1:
                data[at] = static_cast<uint8_t>(random());
                break;
            case 2:
                data.resize(at);
                break;
            case 3:
                data.insert(data.begin() + static_cast<long>(at), static_cast<uint8_t>(random()));
                break;
            default:
                for (size_t i = at; i < data.size() && i < at + 4; ++i)
                    data[i] = random() % 2 ? 0xFF : 0;
        }
    }
}

Data Program(unsigned kind) {
    std::vector<BuiltResource> resources = {
        {4, 1, u"", 0x409, BuildMenu({{u"&File", 0, {{u"&Open", 5}}}, {u"x", 6}})},
        {4, 1, u"", 0x407, BuildExtendedMenu({{u"&Datei", 0, {{u"&Auf", 5}}}, {u"y", 6}})},
        {5, 0, u"ABOUT", 0x409, BuildExtendedDialog(u"T", {{0x80, u"", u"OK"}, {0, u"C", u"t"}})},
        {5, 7, u"", 0x409, BuildDialog(u"T", {{0x82, u"", u"Name:"}})},
        {6, 1, u"", 0x409, BuildStrings({u"One", u"Two"})},
    };
    return BuildImage(
        {resources,
         {{"user32.dll", {"LoadStringW", "#5"}}, {"kernel32.dll", {"LoadResource"}, true}},
         "",
         kind % 2 == 0});
}

const char* kPo =
    "# c\nmsgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\nX-Dialog-Font-Name: "
    "a\\n\"\n"
    "\n#. n\n#: a.exe/dialog/1/2\n#, fuzzy\n#| msgid \"old\"\nmsgctxt \"a.exe/menu/M\"\nmsgid "
    "\"a\\t%s\"\n"
    "msgstr \"b\\x41\"\n\n#~ msgid \"x\"\n#~ msgstr \"\"\n";
const char* kDictionary =
    "; "
    "c\r\n\"DialogFontName\"\r\n\"x\"\r\n\"DialogFontSize\"\r\n\"8\"\r\n\"DialogFontScript\"\r\n\"0"
    "\"\r\n"
    "\"a.exe#1#130\xFD\xFD"
    "Open\\n\"\r\n\"Auf\\\\\"\r\n\"\x95\x5C\"\r\n\"b\"\r\n"
    "[\\a.exe\\Dialogs\\#130]\r\nDialog Size=z3,0\r\n4=t1,0,-3,0|5=t1,0,3,0\r\n";

void Round(unsigned seed) {
    static const auto western = qx::OpenCodePage(1252), japanese = qx::OpenCodePage(932);
    std::mt19937 random(seed);
    const qx::CodePage& page = seed & 1 ? *western : *japanese;
    unsigned kind = seed % 4;
    Data data;
    if (kind < 2) {
        data = Program(kind);
    } else {
        std::string text = kind == 2 ? kPo : kDictionary;
        data.assign(text.begin(), text.end());
    }
    Mutate(data, random);
    constexpr FileKind kKinds[] = {FileKind::Program, FileKind::Program, FileKind::Translations,
                                   FileKind::Dictionary};
    Use(kKinds[kind], data, page);
}

}  // namespace

int main(int count, char** words) {
    unsigned rounds =
        count > 1 ? static_cast<unsigned>(std::strtoul(words[1], nullptr, 10)) : 20000;
    unsigned first = count > 2 ? static_cast<unsigned>(std::strtoul(words[2], nullptr, 10)) : 1;
    for (unsigned i = 0; rounds == 0 || i < rounds; ++i) Round(first + i);
    std::printf("%u rounds from seed %u\n", rounds, first);
    return 0;
}
