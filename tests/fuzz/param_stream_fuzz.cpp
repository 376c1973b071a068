// Broken streams of trees: loading ends in a tree that can be walked, saved and loaded again, and
// nothing but the library's own exceptions comes out.
#include "fuzz/fuzz_driver.h"
#include "fuzz/param_walk.h"

#include <objbase.h>

namespace {

std::string RandomName(Random& random) {
    static constexpr const char* kNames[] = {"a", "B", "name", "a b", "x.y", "\x83\x5C", "\x83"};
    std::string name = kNames[random.Below(7)];
    if (random.Below(20) == 0) name.append(1000 + random.Below(50), 'n');
    return name;
}

void AddValue(std::string& bytes, Random& random) {
    static constexpr unsigned kWidths[] = {4, 4, 1, 2, 4, 4, 4, 4, 8, 4, 0, 8, 16, 8, 16, 16, 32};
    unsigned type = random.Below(18);
    bytes += RandomName(random) + '\0';
    bytes += char(type);
    bytes += '\0';
    if (type == QXVT_STRING || type == QXVT_BLOB) {
        unsigned size = 1 + random.Below(40);
        bytes.append(reinterpret_cast<const char*>(&size), 4);
        bytes.append(size - 1, 't');
        bytes += '\0';
    } else {
        for (unsigned i = 0; i < kWidths[type]; ++i) bytes += char(random.Next());
    }
}

void AddNode(std::string& bytes, Random& random, int depth) {
    for (unsigned n = depth < 6 ? random.Below(4) : 0; n > 0; --n) {
        bytes += RandomName(random) + '\0';
        AddNode(bytes, random, depth + 1);
    }
    bytes += '\0';
    for (unsigned n = random.Below(4); n > 0; --n) AddValue(bytes, random);
    bytes += '\0';
}

qx::Reference<IXStream> NewStream(Random& random) {
    if (random.Below(2)) return qx::Reference<IXStream>(new_StreamOnMemory());
    qx::Reference<IStream> ole;
    CreateStreamOnHGlobal(nullptr, TRUE, ole.Receive());
    return qx::Reference<IXStream>(new_StreamByOleStream(ole.Get()));
}

bool SurvivesAsAName(const char* name) {
    return *name && strlen(name) < 1024 && !strpbrk(name, "\n\\");
}

// Whether all of a tree comes back: names that survive, and no objects, which come back as others.
bool ComesBackWhole(IParam* root) {
    bool whole = true;
    EachNode(root, 100000, [&](IParam* node) {
        auto look = [&](CTEnum<const char*>* names, bool ofValues) {
            qx::Reference<CTEnum<const char*>> walk(names);
            const char* name;
            while (walk->Next(1, &name, nullptr)) {
                CQXVariant value;
                if (ofValues) node->GetValue(name, &value);
                whole = whole && SurvivesAsAName(name) && value.type != QXVT_UNKNOWN;
            }
        };
        look(node->EnumValues(), true);
        look(node->EnumSubParams(), false);
    });
    return whole;
}

// Saved and loaded, such a tree is the same.
bool ComesBack(IParam* root, Random& random) {
    bool whole = ComesBackWhole(root);
    qx::Reference<IXStream> stream = NewStream(random);
    qx::Reference<IParam> back(new_MemParam());
    try {
        if (!SaveParamToXStream(stream.Get(), root)) return false;
        stream->Seek(0, 0);
        if (!LoadParamFromXStream(stream.Get(), back.Get())) return !whole;
    } catch (CXException&) {
        return !whole;
    }
    return !whole || (Param_Cmp(root, back.Get()) && Param_Cmp(back.Get(), root));
}

bool Round(Random& random) {
    std::string bytes;
    AddNode(bytes, random, 0);
    bool whole = random.Below(4) == 0 && bytes.size() < 1000;
    if (!whole) Mutate(bytes, random);
    qx::Reference<IXStream> stream(NewStream(random));
    stream->Write(bytes.data(), int(bytes.size()));
    stream->Seek(0, 0);
    qx::Reference<IParam> root(new_MemParam());
    try {
        LoadParamFromXStream(stream.Get(), root.Get());
    } catch (CXException&) {
        if (whole) return false;
    }
    ReadTree(root.Get());
    return ComesBack(root.Get(), random);
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 250, Round);
}
