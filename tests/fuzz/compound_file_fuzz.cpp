// Compound files with flipped bytes: whatever is read from them ends in an answer or an exception.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <vector>

namespace {

using qx::Reference;

constexpr int kDeepest = 8;
constexpr int kMostNames = 200;

std::string g_path;

void Fill(IXStorage* storage, const char* name, unsigned size) {
    Reference<IXStream> stream(storage->CreateStream(name));
    std::string bytes(size, static_cast<char>('a' + size % 26));
    stream->Write(bytes.data(), static_cast<int>(size));
}

// A file with small and large streams, levels and properties, as its bytes.
std::string WholeFile() {
    {
        Reference<IXStorage> root(new_Storage(g_path.c_str(), 0));
        Fill(root.Get(), "small", 100);
        Fill(root.Get(), "medium", 3000);
        Fill(root.Get(), "large", 20000);
        Reference<IXStorage> child(root->CreateStorage("child", 0));
        for (int i = 0; i < 12; ++i)
            Fill(child.Get(), ("leaf " + std::to_string(i)).c_str(), i * 64);
        Reference<IXStorage> grandchild(child->CreateStorage("grandchild", 0));
        Fill(grandchild.Get(), "last", 5000);
    }
    HANDLE file = CreateFileA(g_path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    std::string bytes(GetFileSize(file, nullptr), 0);
    DWORD read;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    return bytes;
}

void WriteFileBytes(const std::string& bytes) {
    HANDLE file = CreateFileA(g_path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

std::vector<std::string> NamesOf(CTEnum<const char*>* given) {
    Reference<CTEnum<const char*>> all(given);
    std::vector<std::string> names;
    const char* name;
    while (names.size() < kMostNames && all->Next(1, &name, nullptr)) names.push_back(name);
    return names;
}

template <class Act>
void Try(Act act) {
    try {
        act();
    } catch (CXException&) {
    }
}

void ReadStream(IXStream* given) {
    Reference<IXStream> stream(given);
    if (!stream) return;
    Try([&] {
        char block[1000];
        for (int i = 0; i < 100 && stream->Read(block, sizeof block) > 0; ++i) {
        }
        stream->GetLength();
    });
}

void Walk(IXStorage* storage, int depth, bool change) {
    Try([&] {
        for (const std::string& name : NamesOf(storage->EnumStreams())) {
            ReadStream(storage->OpenStream(name.c_str()));
            if (change) Try([&] { storage->DeleteStream(name.c_str()); });
        }
    });
    if (change) {
        Try([&] {
            Reference<IXStream> stream(storage->CreateStream("added"));
            if (stream) stream->WriteString("something new");
        });
    }
    Try([&] {
        for (const std::string& name : NamesOf(storage->EnumStorages())) {
            if (depth == kDeepest) break;
            Reference<IXStorage> child(storage->OpenStorage(name.c_str()));
            Walk(child.Get(), depth + 1, change);
        }
    });
}

const std::string& Pristine() {
    static const std::string bytes = WholeFile();
    return bytes;
}

// Half of the flips hit the header and the tables, where they do the most.
void Flip(std::string& bytes, Random& random) {
    for (unsigned n = 1 + random.Below(6); n > 0; --n) {
        auto limit = static_cast<unsigned>(bytes.size());
        unsigned at = random.Below(random.Below(2) ? limit : 2048);
        if (random.Below(3) == 0) {
            unsigned border = random.Border();
            bytes.replace(at & ~3u, 4, reinterpret_cast<const char*>(&border), 4);
        } else {
            bytes[at] ^= static_cast<char>(1 << random.Below(8));
        }
    }
    if (random.Below(10) == 0) bytes.resize(random.Below(static_cast<unsigned>(bytes.size())));
}

bool Round(Random& random) {
    std::string bytes = Pristine();
    Flip(bytes, random);
    WriteFileBytes(bytes);
    bool change = random.Below(2);
    Try([&] {
        Reference<IXStorage> root(open_Storage(g_path.c_str(), !change));
        Walk(root.Get(), 0, change);
    });
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    char directory[MAX_PATH], file[MAX_PATH];
    GetTempPathA(MAX_PATH, directory);
    GetTempFileNameA(directory, "fuz", 0, file);
    g_path = file;
    int result = fuzz::Main(argc, argv, 300, Round);
    DeleteFileA(file);
    return result;
}
