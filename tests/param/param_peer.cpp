// The second process of the parameter tests.
//
//     param_peer dump          Dump_Param of a tree in memory
//     param_peer dump_ini      Dump_Param of an ini file in which a child has no section of its own
//     param_peer save PATH STEP
//                              writes a tree to an ini file, and dies before call number STEP to
//                              the system that the library makes; exit code 0 when it made fewer
//     param_peer keys PATH PREFIX COUNT live|raw
//                              stores the values PREFIX0, PREFIX1, ... of an ini file through a
//                              tree or through the platform's call
#include <qxcore.h>

#include "support/import_slot.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

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

constexpr unsigned kDied = 77;
int g_step, g_deadlyStep;

// One replacement for each function: it calls the real one, and dies when its turn has come.
template <int N>
struct DeadlyCall {
    static inline void* real;

    static void* Call(void* a, void* b, void* c, void* d, void* e, void* f, void* g) {
        auto call =
            reinterpret_cast<void* (*)(void*, void*, void*, void*, void*, void*, void*)>(real);
        void* result = call(a, b, c, d, e, f, g);
        if (++g_step == g_deadlyStep) TerminateProcess(GetCurrentProcess(), kDied);
        return result;
    }
};

constexpr const char* kCalls[] = {
    "CreateFileA",      "CreateFileMappingA", "MapViewOfFile", "UnmapViewOfFile",   "CloseHandle",
    "SetEndOfFile",     "SetFilePointerEx",   "GetFileSizeEx", "DeleteFileA",       "MoveFileA",
    "GetTempFileNameA", "FindFirstFileA",     "FindClose",     "GetFileAttributesA"};

template <int... N>
void MakeDeadly(std::integer_sequence<int, N...>) {
    static std::unique_ptr<ReplacedImport> patches[sizeof...(N)];
    ((patches[N] = std::make_unique<ReplacedImport>(kCalls[N],
                                                    reinterpret_cast<void*>(&DeadlyCall<N>::Call)),
      DeadlyCall<N>::real = patches[N]->Real()),
     ...);
}

int Save(const char* path, int step) {
    qx::Reference<IParam> tree(new_MemParam());
    for (int i = 0; i < 200; ++i) {
        CQXVariant text(std::string(2000, 'x').c_str());
        tree->SetValue(("value" + std::to_string(i)).c_str(), &text);
    }
    MakeDeadly(std::make_integer_sequence<int, int(sizeof kCalls / sizeof kCalls[0])>());
    g_deadlyStep = step;
    return Param_Param2IniFile(tree.Get(), path) == 1 ? 0 : 1;
}

int StoreKeys(const char* path, const std::string& prefix, int count, bool live) {
    qx::Reference<IParam> root(live ? new_IParamIniFile(path) : nullptr);
    for (int i = 0; i < count; ++i) {
        std::string name = prefix + std::to_string(i), text = "i" + std::to_string(i);
        if (live) {
            SetInt(root.Get(), name.c_str(), i);
        } else {
            WritePrivateProfileStringA("\\", name.c_str(), text.c_str(), path);
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const char* word = argc > 1 ? argv[1] : "";
    if (strcmp(word, "dump") == 0) return Dump();
    if (strcmp(word, "dump_ini") == 0) return DumpIni();
    if (strcmp(word, "save") == 0 && argc > 3) return Save(argv[2], atoi(argv[3]));
    if (strcmp(word, "keys") == 0 && argc > 5)
        return StoreKeys(argv[2], argv[3], atoi(argv[4]), strcmp(argv[5], "live") == 0);
    return 1;
}
