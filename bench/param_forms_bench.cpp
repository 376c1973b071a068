// Live ini trees, the forms of whole trees and the tree operations, beside what a program would do
// by hand.
#include "bench/ini_text.h"
#include "bench/measure.h"

#include <qxcore.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#if defined(QXCORE_BENCH_SIMPLEINI)
#include <SimpleIni.h>
#endif

namespace {

std::string FullPath(const char* name) {
    char path[MAX_PATH];
    GetFullPathNameA(name, sizeof path, path, nullptr);
    return path;
}

std::string SmallIni(int keys, const std::string& head = "[\\]\r\n@=e\r\n") {
    std::string text = head;
    for (int i = 0; i < keys; ++i)
        text += "key" + std::to_string(i) + "=i" + std::to_string(i) + "\r\n";
    return text;
}

void WriteFile(const std::string& path, const std::string& text) {
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str());
    FILE* file = fopen(path.c_str(), "wb");
    fwrite(text.data(), 1, text.size(), file);
    fclose(file);
}

unsigned Count(CTEnum<const char*>* names) {
    qx::Reference<CTEnum<const char*>> walk(names);
    unsigned count = 0;
    const char* name;
    while (walk && walk->Next(1, &name, nullptr)) ++count;
    return count;
}

// The raw calls use a buffer of the same size and a file of the same content.
void BenchLiveIni() {
    static char buffer[64000];
    std::string path = FullPath("param_forms_bench.ini");
    WriteFile(path, SmallIni(100));
    {
        qx::Reference<IParam> root(new_IParamIniFile(path.c_str()));
        bench::Compare(
            "ini GetValue, 100 keys", "GetPrivateProfileStringA",
            [&] {
                CQXVariant value;
                bench::Keep(root->GetValue("key50", &value));
            },
            [&] {
                bench::Keep(GetPrivateProfileStringA("\\", "key50", "", buffer, sizeof buffer,
                                                     path.c_str()));
            });
        CQXVariant value(12345);
        bench::Compare(
            "ini SetValue, 100 keys", "WritePrivateProfileStringA",
            [&] { bench::Keep(root->SetValue("key50", &value)); },
            [&] {
                bench::Keep(WritePrivateProfileStringA("\\", "key50", "i12345", path.c_str()));
            });
    }
    for (int names : {100, 1000, 10000}) {
        std::string text = "[\\]\r\n", sections = "[\\]\r\nx=e\r\n";
        for (int i = 0; i < names; ++i) {
            char name[8];
            snprintf(name, sizeof name, "%04d", i);
            text += std::string(name) + "=i1\r\n";
            sections += "[\\" + std::string(name) + "]\r\n";
        }
        WriteFile(path, text);
        std::string what = "ini EnumValues, " + std::to_string(names);
        qx::Reference<IParam> root(new_IParamIniFile(path.c_str()));
        bench::Compare(
            what.c_str(), "GetPrivateProfileStringA, all keys",
            [&] { bench::Keep(Count(root->EnumValues())); },
            [&] {
                bench::Keep(GetPrivateProfileStringA("\\", nullptr, "", buffer, sizeof buffer,
                                                     path.c_str()));
            });
        WriteFile(path, sections);
        what = "ini EnumSubParams, " + std::to_string(names);
        bench::Compare(
            what.c_str(), "GetPrivateProfileStringA, all sections",
            [&] { bench::Keep(Count(root->EnumSubParams())); },
            [&] {
                bench::Keep(GetPrivateProfileStringA(nullptr, nullptr, "", buffer, sizeof buffer,
                                                     path.c_str()));
            });
    }
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str());
    remove(path.c_str());
}

void BenchTextForms() {
    constexpr char kSource[] = "param_forms_source.ini", kTarget[] = "param_forms_target.ini";
    std::string text = IniText();
    WriteFile(FullPath(kSource), text);
    qx::Reference<IParam> tree(new_MemParam());
    Param_IniFile2Param(kSource, tree.Get());
    auto toFile = [&] { Param_Param2IniFile(tree.Get(), kTarget); };
    CXString joined;
    auto toString = [&] { Param_Param2String(tree.Get(), joined); };
    auto megabytes = [&](double seconds) { return text.size() / seconds / 1e6; };
    printf("a tree of %.0f KB of ini text\n", text.size() / 1024.0);
#if defined(QXCORE_BENCH_SIMPLEINI)
    CSimpleIniA ini;
    ini.LoadFile(kSource);
    bench::Figures f = bench::Compare("Param_Param2IniFile", "SimpleIni SaveFile", toFile,
                                      [&] { ini.SaveFile(kTarget); });
    printf("    %.0f MB/s, SimpleIni %.0f MB/s\n", megabytes(f.ours), megabytes(f.peer));
    f = bench::Compare("Param_Param2String", "SimpleIni Save to a std::string", toString, [&] {
        std::string out;
        ini.Save(out);
        bench::Keep(out);
    });
    printf("    %.0f MB/s, SimpleIni %.0f MB/s\n", megabytes(f.ours), megabytes(f.peer));
#else
    bench::Figures f =
        bench::Compare("Param_Param2IniFile", "Param_Param2String", toFile, toString);
    printf("    %.0f MB/s, to a string %.0f MB/s\n", megabytes(f.ours), megabytes(f.peer));
#endif
    toString();
    remove(kSource);
    remove(kTarget);
}

void BenchStreamForm() {
    constexpr int kValues = 10000;
    std::vector<std::string> names;
    std::vector<CQXVariant> values;
    values.reserve(kValues);
    qx::Reference<IParam> tree(new_MemParam());
    for (int i = 0; i < kValues; ++i) {
        names.push_back("value" + std::to_string(i));
        if (i % 2) {
            values.emplace_back(i);
        } else {
            values.emplace_back(("text " + std::to_string(i)).c_str());
        }
        tree->SetValue(names.back().c_str(), &values.back());
    }
    qx::Reference<IXStream> stream(new_StreamOnMemory()), byHand(new_StreamOnMemory());
    bench::Compare(
        "SaveParamToXStream, 10,000 values", "writing them by hand",
        [&] {
            stream->Seek(0, 0);
            SaveParamToXStream(stream.Get(), tree.Get());
        },
        [&] {
            byHand->Seek(0, 0);
            byHand->WriteString("");
            for (int i = 0; i < kValues; ++i) {
                byHand->WriteString(names[i].c_str());
                byHand->WriteVariant(&values[i]);
            }
            byHand->WriteString("");
        });
    qx::Reference<IParam> loaded(new_MemParam()), filled(new_MemParam());
    bench::Compare(
        "LoadParamFromXStream, 10,000 values", "reading and storing by hand",
        [&] {
            stream->Seek(0, 0);
            LoadParamFromXStream(stream.Get(), loaded.Get());
        },
        [&] {
            stream->Seek(0, 0);
            filled->Clear();
            char name[1026];
            stream->ReadString(name, 1024);
            while (stream->ReadString(name, 1024) >= 2) {
                CQXVariant value;
                stream->ReadVariant(&value);
                filled->SetValue(name, &value);
            }
        });
}

// 100 nodes of 100 values each.
struct PeerTree {
    using Value = std::variant<std::monostate, int, double, std::string>;
    std::map<std::string, Value> values;
    std::map<std::string, PeerTree> children;

    bool operator==(const PeerTree&) const = default;
};

void BenchTreeOperations() {
    qx::Reference<IParam> tree(new_MemParam()), equal(new_MemParam());
    PeerTree peer;
    for (int node = 0; node < 100; ++node) {
        std::string name = "node" + std::to_string(node);
        qx::Reference<IParam> child(tree->CreateSubParam(name.c_str()));
        PeerTree& peerChild = peer.children[name];
        for (int i = 0; i < 100; ++i) {
            std::string key = "value" + std::to_string(i), text = "some longer text " + key;
            CQXVariant value(i);
            if (i % 2) value = text.c_str();
            child->SetValue(key.c_str(), &value);
            peerChild.values[key] = i % 2 ? PeerTree::Value(std::move(text)) : PeerTree::Value(i);
        }
    }
    Param_CopyTo(tree.Get(), equal.Get());
    PeerTree same = peer;
    bench::Compare(
        "Param_CopyTo, 10,000 values in 100 nodes", "copying nested std::map",
        [&] {
            qx::Reference<IParam> copy(new_MemParam());
            Param_CopyTo(tree.Get(), copy.Get());
        },
        [&] {
            PeerTree copy = peer;
            bench::Keep(copy);
        });
    bench::Compare(
        "Param_Cmp, 10,000 values in 100 nodes", "comparing nested std::map",
        [&] { bench::Keep(Param_Cmp(tree.Get(), equal.Get())); },
        [&] { bench::Keep(peer == same); });
}

}  // namespace

int main() {
    BenchLiveIni();
    BenchTextForms();
    BenchStreamForm();
    BenchTreeOperations();
}
