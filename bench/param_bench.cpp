// Parameter trees and ini text beside what a program would take instead.
//
// A native inih is measured by inih_peer, whose nanoseconds for the text come in as QXCORE_INIH;
// bench/param runs both.
#include "bench/ini_text.h"
#include "bench/measure.h"

#include <qxcore.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <variant>

#if defined(QXCORE_BENCH_SIMPLEINI)
#include <SimpleIni.h>
#endif

namespace {

constexpr char kFile[] = "param_bench.ini";

// Takes everything and keeps nothing.
class CNullParam : public CQXUnknownImpl<IParam> {
public:
    IParam* CreateSubParam(const char*) override { return Self(); }
    IParam* OpenSubParam(const char*, int) override { return Self(); }
    void DeleteSubParam(const char*) override {}
    void DeleteAllSubParams() override {}
    CTEnum<const char*>* EnumSubParams() override { return nullptr; }
    int GetValue(const char*, tagQXVARIANT*) override { return 0; }
    int SetValue(const char*, const tagQXVARIANT*) override { return 1; }
    int DeleteValue(const char*) override { return 1; }
    void DeleteAllValues() override {}
    CTEnum<const char*>* EnumValues() override { return nullptr; }
    void Clear() override {}

private:
    IParam* Self() {
        AddRef();
        return this;
    }
};

// The text where a path can name it: below 2 GiB.
class TextInMemory {
public:
    explicit TextInMemory(const std::string& text) {
        for (size_t at = 0x10000000; !m_bytes && at < 0x70000000; at += 0x10000) {
            m_bytes = VirtualAlloc(reinterpret_cast<void*>(at), text.size(),
                                   MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        }
        memcpy(m_bytes, text.data(), text.size());
        path = "fmem::" + std::to_string(reinterpret_cast<size_t>(m_bytes)) + "," +
               std::to_string(text.size());
    }
    ~TextInMemory() { VirtualFree(m_bytes, 0, MEM_RELEASE); }
    TextInMemory(const TextInMemory&) = delete;
    TextInMemory& operator=(const TextInMemory&) = delete;

    std::string path;

private:
    void* m_bytes = nullptr;
};

void BenchIniText() {
    std::string text = IniText();
    FILE* file = fopen(kFile, "wb");
    fwrite(text.data(), 1, text.size(), file);
    fclose(file);
    TextInMemory memory(text);
    printf("ini text of %.0f KB with %d values\n", text.size() / 1024.0, kIniSections * kIniKeys);

    CNullParam sink;
    auto toSink = [&] { Param_IniFile2Param(kFile, &sink); };
    auto memoryToSink = [&] { Param_IniFile2Param(memory.path.c_str(), &sink); };
    auto toTree = [&] {
        IParam* tree = new_MemParam();
        Param_IniFile2Param(kFile, tree);
        tree->Release();
    };
    auto megabytes = [&](double seconds) { return text.size() / seconds / 1e6; };
    // What a file costs before its first byte is read.
    bench::Compare("ini text of a file to a null sink", "opening and closing it", toSink,
                   [] { Fio_Open(kFile, 0)->Release(); });
    bench::Figures f = bench::Compare("ini text of a file to a null sink", "the same from memory",
                                      toSink, memoryToSink);
    printf("    %.0f MB/s, from memory %.0f MB/s\n", megabytes(f.ours), megabytes(f.peer));
    const char* inih = getenv("QXCORE_INIH");
    if (double nanoseconds = inih ? atof(inih) : 0; nanoseconds > 0) {
        printf("%-52s %10.2f ns   %-28s %10.2f ns   ratio %6.3f\n",
               "ini text from memory to a null sink", f.peer * 1e9, "inih callbacks (native)",
               nanoseconds, f.peer * 1e9 / nanoseconds);
    }
#if defined(QXCORE_BENCH_SIMPLEINI)
    auto simple = [&] {
        CSimpleIniA ini;
        ini.LoadFile(kFile);
    };
    bench::Compare("ini text of a file to a null sink", "SimpleIni LoadFile", toSink, simple);
    f = bench::Compare("ini text of a file into a tree in memory", "SimpleIni LoadFile", toTree,
                       simple);
    printf("    %.0f MB/s, SimpleIni %.0f MB/s\n", megabytes(f.ours), megabytes(f.peer));
#else
    bench::Compare("ini text of a file into a tree in memory", "the same to a null sink", toTree,
                   toSink);
#endif

    char path[MAX_PATH];
    GetFullPathNameA(kFile, sizeof path, path, nullptr);
    IParam* tree = new_MemParam();
    Param_IniFile2Param(kFile, tree);
    bench::Compare(
        "GetValue of a path", "GetPrivateProfileStringA",
        [&] {
            CQXVariant value;
            bench::Keep(tree->GetValue("section80\\key50", &value));
        },
        [&] {
            char value[64];
            bench::Keep(
                GetPrivateProfileStringA("\\section80", "key50", "", value, sizeof value, path));
        });
    tree->Release();
    remove(kFile);
}

void BenchTree() {
    using Peer = std::map<std::string, std::variant<int, double, std::string>>;
    constexpr int kNames = 100;
    static char names[kNames][16];
    for (int i = 0; i < kNames; ++i) snprintf(names[i], sizeof names[i], "Name%d", i);
    IParam* node = new_MemParam();
    Peer peer;
    int next = 0, peerNext = 0;
    bench::Compare(
        "SetValue of an int", "std::map<string, variant>",
        [&] {
            CQXVariant value(next);
            node->SetValue(names[next++ % kNames], &value);
        },
        [&] {
            peer[names[peerNext % kNames]] = peerNext;
            ++peerNext;
        });
    bench::Compare(
        "GetValue of an int", "std::map<string, variant>",
        [&] {
            CQXVariant value;
            bench::Keep(node->GetValue(names[next++ % kNames], &value));
        },
        [&] {
            auto found = peer.find(names[peerNext++ % kNames]);
            auto value = found->second;
            bench::Keep(value);
        });
    node->Release();
}

}  // namespace

int main() {
    BenchIniText();
    BenchTree();
}
