// The second process of the file tests.
//
//     file_peer hold PATH ACCESS SHARING    opens a file, says so, and holds it until told to go on
//     file_peer open PATH ACCESS SHARING    exit code: the error of opening
//     file_peer lock PATH                   Fio_LockFile; says so, and holds it until told to go on
//     file_peer hold_saving PATH            writes over PATH, says so, and waits without Commit
//     file_peer save PATH SIZE STEP         saves SIZE bytes 'n' over PATH, and dies before call
//     number STEP to the
//                                           system that the library makes; exit code 0 when it made
//                                           fewer
#include <qxcore.h>

#include "support/import_slot.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

constexpr unsigned kDied = 77;

void SayAndWait() {
    DWORD done;
    char word = '!';
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), &word, 1, &done, nullptr);
    ReadFile(GetStdHandle(STD_INPUT_HANDLE), &word, 1, &done, nullptr);
}

HANDLE OpenPlain(char** arguments) {
    return CreateFileA(arguments[0], strtoul(arguments[1], nullptr, 0),
                       strtoul(arguments[2], nullptr, 0), nullptr, OPEN_EXISTING, 0, nullptr);
}

int g_step;
int g_deadlyStep;

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
    "CreateFileA",     "CreateFileMappingA", "MapViewOfFile",  "UnmapViewOfFile",
    "FlushViewOfFile", "CloseHandle",        "SetEndOfFile",   "SetFilePointerEx",
    "GetFileSizeEx",   "GetTempFileNameA",   "FindFirstFileA", "FindClose",
    "CopyFileA",       "DeleteFileA",        "MoveFileA",      "GetFileAttributesA"};
constexpr int kCallCount = int(sizeof kCalls / sizeof kCalls[0]);

template <int... N>
void PatchAll(std::unique_ptr<ReplacedImport> (&patches)[kCallCount],
              std::integer_sequence<int, N...>) {
    ((patches[N] = std::make_unique<ReplacedImport>(kCalls[N],
                                                    reinterpret_cast<void*>(&DeadlyCall<N>::Call)),
      DeadlyCall<N>::real = patches[N]->Real()),
     ...);
}

int Save(const char* path, unsigned size, int step) {
    Fio_LockFile(path);  // as a program does with the document that it shows
    static std::unique_ptr<ReplacedImport> patches[kCallCount];
    PatchAll(patches, std::make_integer_sequence<int, kCallCount>());
    g_deadlyStep = step;
    std::string content(size, 'n');
    IXOutFile* file = Fio_OpenOut(path, 0);
    for (unsigned at = 0; at < size; at += 50000)
        file->Write(&content[at], std::min(50000u, size - at));
    file->Commit();
    file->Release();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::string command = argc > 2 ? argv[1] : "";
    if (command == "hold" || command == "open") {
        HANDLE file = OpenPlain(argv + 2);
        if (file == INVALID_HANDLE_VALUE) return int(GetLastError());
        if (command == "hold") SayAndWait();
        return 0;
    }
    if (command == "lock") {
        Fio_LockFile(argv[2]);
        SayAndWait();
        return Fio_LockCount(argv[2]);
    }
    if (command == "hold_saving") {
        Fio_OpenOut(argv[2], 0)->WriteString("new content");
        SayAndWait();
        return 0;
    }
    if (command == "save") return Save(argv[2], unsigned(atoi(argv[3])), atoi(argv[4]));
    return 255;
}
