// The program beside which the platform's own registry tools are tested:
//     registry_peer write KEY             one value of each type, under a key of the current user
//     registry_peer read KEY              prints every value as "NAME=TYPE:VALUE"
//     registry_peer fill KEY NAME COUNT   writes the values NAME1 to NAMEcount, and reads each back
#include "param/tree_text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

ParamPtr Open(const char* key) {
    HKEY made = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &made, nullptr);
    RegCloseKey(made);
    return ParamPtr(new_IParamCUReg(key));
}

void Put(IParam* node, const char* name, const CQXVariant& value) {
    node->SetValue(name, &value);
}

void Write(IParam* node) {
    unsigned char byte = 0xFE;
    unsigned short word = 0x1234;
    unsigned long ulong = 0x89ABCDEF;
    char bytes[] = {1, 0, 2};
    Put(node, "00 empty", CQXVariant());
    Put(node, "01 bool", CQXVariant(1, QXVT_BOOL));
    Put(node, "02 byte", CQXVariant(byte));
    Put(node, "03 word", CQXVariant(word));
    Put(node, "04 ulong", CQXVariant(ulong));
    Put(node, "05 int", CQXVariant(-2));
    Put(node, "06 uint", CQXVariant(7u));
    Put(node, "07 long", CQXVariant(-1L));
    Put(node, "08 double", CQXVariant(-2.5));
    Put(node, "09 float", CQXVariant(1.0f));
    Put(node, "10 string", CQXVariant("some text"));
    Put(node, "11 size", CQXVariant(tagSIZE{1, -1}));
    Put(node, "12 rsize", CQXVariant(tagRSIZE{1, -2.5}));
    Put(node, "13 point", CQXVariant(tagPOINT{2, 3}));
    Put(node, "14 rpoint", CQXVariant(tagRPOINT{0, 1}));
    Put(node, "15 rect", CQXVariant(tagRECT{1, 2, 3, -1}));
    Put(node, "16 rrect", CQXVariant(tagRRECT{0, 1, -2.5, 0}));
    Put(node, "17 blob", CQXVariant(tagQXBLOB{3, bytes}));
    Put(ParamPtr(node->CreateSubParam("child")).Get(), "", CQXVariant(5));
}

void Print(IParam* node) {
    NamesPtr names(node->EnumValues());
    const char* name;
    while (names->Next(1, &name, nullptr)) {
        CQXVariant value;
        int there = node->GetValue(name, &value);
        printf("%s=%s\n", name, there ? ValueText(value).c_str() : "none");
    }
}

int Fill(IParam* node, const std::string& name, int count) {
    for (int i = 1; i <= count; ++i) {
        std::string own = name + std::to_string(i);
        SetInt(node, own.c_str(), i);
        if (GetInt(node, own.c_str()) != i) return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    ParamPtr node = Open(argv[2]);
    if (!node) return 2;
    std::string verb = argv[1];
    if (verb == "write") {
        Write(node.Get());
    } else if (verb == "read") {
        Print(node.Get());
    } else if (verb == "fill" && argc == 5) {
        return Fill(node.Get(), argv[3], atoi(argv[4]));
    }
    return 0;
}
