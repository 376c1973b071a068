// Parameter trees and ini text beside what a program would take instead.
#include "bench/measure.h"

#include <qxcore.h>

#include <cstring>
#include <map>
#include <string>
#include <variant>

#if defined(QXCORE_BENCH_SIMPLEINI)
#include <SimpleIni.h>
#endif

namespace {

constexpr int kSections = 160;
constexpr int kKeys = 100;
constexpr char kFile[] = "param_bench.ini";

// 16,000 values in 160 sections, of the types that settings have.
std::string IniText() {
    std::string text;
    for (int section = 0; section < kSections; ++section) {
        text += "[\\section" + std::to_string(section) + "]\r\n";
        for (int key = 0; key < kKeys; ++key) {
            std::string n = std::to_string(section * kKeys + key);
            text += "key" + std::to_string(key) + (key % 2 ? "=i" + n : "=stext " + n) + "\r\n";
        }
    }
    return text;
}

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

void BenchIniText() {
    std::string text = IniText();
    FILE* file = fopen(kFile, "wb");
    fwrite(text.data(), 1, text.size(), file);
    fclose(file);
    printf("ini text of %.0f KB with %d values\n", text.size() / 1024.0, kSections * kKeys);

    CNullParam sink;
    auto toSink = [&] { Param_IniFile2Param(kFile, &sink); };
    auto toTree = [&] {
        IParam* tree = new_MemParam();
        Param_IniFile2Param(kFile, tree);
        tree->Release();
    };
    // The peer's bytes alone: what any reader pays.
    auto plainRead = [&] {
        static char bytes[1 << 20];
        FILE* in = fopen(kFile, "rb");
        bench::Keep(fread(bytes, 1, sizeof bytes, in));
        fclose(in);
    };
    auto megabytes = [&](double seconds) { return text.size() / seconds / 1e6; };
    bench::Figures f = bench::Compare("ini text to a null sink", "fread of the file", toSink, plainRead);
    printf("    %.0f MB/s\n", megabytes(f.ours));
#if defined(QXCORE_BENCH_SIMPLEINI)
    auto simple = [&] {
        CSimpleIniA ini;
        ini.LoadFile(kFile);
    };
    f = bench::Compare("ini text to a null sink", "SimpleIni LoadFile", toSink, simple);
    f = bench::Compare("ini text into a tree in memory", "SimpleIni LoadFile", toTree, simple);
    printf("    %.0f MB/s, SimpleIni %.0f MB/s\n", megabytes(f.ours), megabytes(f.peer));
#else
    bench::Compare("ini text into a tree in memory", "ini text to a null sink", toTree, toSink);
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
            bench::Keep(GetPrivateProfileStringA("\\section80", "key50", "", value, sizeof value, path));
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
