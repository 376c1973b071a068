// The second process of the parameter tests.
//
//     param_peer dump          Dump_Param of a tree in memory
//     param_peer dump_ini      Dump_Param of an ini file in which a child has no section of its own
#include <qxcore.h>

#include <cstdio>
#include <cstring>

namespace {

void SetInt(IParam* node, const char* name, int number) {
    CQXVariant value(number);
    node->SetValue(name, &value);
}

int Dump() {
    qx::Reference<IParam> root(new_MemParam());
    SetInt(root.Get(), "v", 1);
    SetInt(root.Get(), "w%s", 1);
    qx::Reference<IParam> child(root->CreateSubParam("c"));
    SetInt(child.Get(), "x", 1);
    qx::Reference<IParam> deep(child->CreateSubParam("deep"));
    qx::Reference<IParam> last(root->CreateSubParam("d"));
    Dump_Param(root.Get());
    return 0;
}

int DumpIni() {
    char folder[MAX_PATH], path[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    GetTempFileNameA(folder, "qxp", 0, path);
    FILE* file = fopen(path, "wb");
    fputs("[\\]\r\n@=e\r\n[\\aa\\bb]\r\nx=i1\r\n[\\cc]\r\n@=e\r\n", file);
    fclose(file);
    {
        qx::Reference<IParam> root(new_IParamIniFile(path));
        Dump_Param(root.Get());
    }
    DeleteFileA(path);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const char* word = argc > 1 ? argv[1] : "";
    if (strcmp(word, "dump") == 0) return Dump();
    if (strcmp(word, "dump_ini") == 0) return DumpIni();
    return 1;
}
