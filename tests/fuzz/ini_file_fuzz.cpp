// A live tree over hostile files: no operation crashes or goes on for ever, and what was stored is
// read back. Names in the file stay below 32,000 bytes, beyond which the platform's own calls
// fault.
#include "fuzz/fuzz_driver.h"
#include "fuzz/param_walk.h"

#include <mbctype.h>

namespace {

std::string g_file;

constexpr const char* kPieces[] = {"[\\]\r\n",
                                   "[\\a]\r\n",
                                   "[\\a\\b]\r\n",
                                   "[\\A\\c]\r\n",
                                   "[\\a\\\\b]\r\n",
                                   "[\\\\]\r\n",
                                   "[",
                                   "]",
                                   "key=i5\r\n",
                                   "=",
                                   "@=e\r\n",
                                   "=i5\r\n",
                                   "k=\r\n",
                                   ";",
                                   "\r\n",
                                   "\n",
                                   "\r",
                                   "[foreign]\r\n",
                                   "x=shello ",
                                   "\"",
                                   "y=p1,2\r\n",
                                   "z=b1F\r\n",
                                   "w=w70000\r\n",
                                   "\x83\x5C",
                                   "\x83",
                                   "\\",
                                   "\t ",
                                   "[\\\x83\x5C]\r\n",
                                   "name\r\n",
                                   "[\\a\\]\r\n",
                                   "\xE3\x81",
                                   "[]\r\n"};

std::string RandomContent(Random& random) {
    std::string text = random.Below(3) ? "[\\]\r\n" : "";
    for (unsigned n = random.Below(50); n > 0; --n) {
        text += kPieces[random.Below(std::size(kPieces))];
        if (random.Below(30) == 0) text += '\0';
    }
    switch (random.Below(40)) {
        case 0:  // a value, a key, a section's name beyond every buffer that is made for it
            text += "long=s" + std::string(70000, 'v') + "\r\n";
            break;
        case 1:
            text += "[\\" + std::string(31000, 'n') + "]\r\nx=i1\r\n";
            break;
        case 2:
            text += std::string(31000, 'k') + "=i1\r\n";
            break;
        case 3:  // a section with more keys, a file with more sections than a listing holds
            for (int i = 0; i < 9000; ++i) text += "k" + std::to_string(i) + "xxxx=i1\r\n";
            break;
        case 4:
            for (int i = 0; i < 7000; ++i)
                text += "[\\s" + std::to_string(i) + "\\tttt]\r\nx=i\r\n";
            break;
        case 5:
        case 8:  // the mark of UTF-16, and text that is or is not
            text.insert(0, "\xFF\xFE");
            break;
        case 6:
        case 9: {
            std::string wide = "\xFF\xFE";
            for (char c : text) (wide += c) += '\0';
            text = wide;
            break;
        }
        case 7:
            text.insert(0, "\xEF\xBB\xBF");
            break;
    }
    if (random.Below(2)) Mutate(text, random);
    return text;
}

void Remove() {
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, g_file.c_str());
    if (!DeleteFileA(g_file.c_str())) RemoveDirectoryA(g_file.c_str());
}

void Put(Random& random) {
    Remove();
    unsigned kind = random.Below(30);
    if (kind == 0) return;
    if (kind == 1) {
        CreateDirectoryA(g_file.c_str(), nullptr);
        return;
    }
    std::string content = RandomContent(random);
    FILE* file = fopen(g_file.c_str(), "wb");
    fwrite(content.data(), 1, content.size(), file);
    fclose(file);
}

std::string RandomName(Random& random) {
    static constexpr const char* kNames[] = {"a",   "b", "key", "\x83\x5C", "a\\b", "a\\b\\c", "\\",
                                             "a\\", "",  "@",   "x=y",      "]",    "\\a",     " "};
    std::string name = kNames[random.Below(std::size(kNames))];
    // Long ones, and ones that the platform cannot take.
    if (random.Below(20) == 0)
        name.append(random.Below(10000) + (random.Below(2) ? 0 : 32767), 'n');
    return name;
}

void Step(IParam* node, Random& random) {
    std::string name = RandomName(random);
    CQXVariant value(name.c_str()), out;
    switch (random.Below(10)) {
        case 0:
            qx::Reference<IParam>(node->CreateSubParam(name.c_str()));
            break;
        case 1:
            qx::Reference<IParam>(node->OpenSubParam(name.c_str(), 1));
            break;
        case 2:
            node->DeleteSubParam(name.c_str());
            break;
        case 3:
            node->DeleteValue(name.c_str());
            break;
        case 4:
            if (random.Below(4) == 0) node->DeleteAllValues();
            break;
        case 5:
            if (random.Below(4) == 0) node->DeleteAllSubParams();
            break;
        case 6:
            if (random.Below(8) == 0) node->Clear();
            break;
        case 7:
            node->GetValue(name.c_str(), &out);
            break;
        default:
            node->SetValue(name.c_str(), &value);
    }
}

// A plain name holds what was stored under it, where the file can be written at all.
bool Holds(IParam* node, Random& random) {
    int number = int(random.Next());
    CQXVariant value(number), out;
    if (!node->SetValue("plain", &value)) return true;
    return node->GetValue("plain", &out) && out == value;
}

bool Round(Random& random) {
    if (random.Below(2)) _setmbcp(random.Below(2) ? 932 : _MB_CP_SBCS);
    Put(random);
    bool holds;
    {
        qx::Reference<IParam> root(new_IParamIniFile(g_file.c_str()));
        EachNode(root.Get(), 10, [](IParam* node) { ReadValues(node); });
        for (unsigned n = random.Below(12); n > 0; --n) Step(root.Get(), random);
        qx::Reference<IParam> child(root->OpenSubParam(random.Below(2) ? "a" : "\x83\x5C", 1));
        Step(child.Get(), random);
        holds = Holds(child.Get(), random) && Holds(root.Get(), random);
        qx::Reference<IParam> copy(new_MemParam());
        if (random.Below(10) == 0) Param_CopyTo(root.Get(), copy.Get());
    }
    Remove();
    return holds;
}

}  // namespace

int main(int argc, char** argv) {
    char folder[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    g_file = std::string(folder) + "ini_file_fuzz" + std::to_string(GetCurrentProcessId()) + ".ini";
    return fuzz::Main(argc, argv, 12, Round);
}
