// Modules with broken headers and import tables: patching them ends in an answer, and nothing
// outside their own memory is written.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <vector>

namespace {

int WINAPI Replacement() {
    return 0;
}

// The image of the library itself, as the loader laid it out.
const std::string& Pristine() {
    static const std::string image = [] {
        auto base = reinterpret_cast<const char*>(GetModuleHandleA("qxcore.dll"));
        auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        auto headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
        std::string bytes(headers->OptionalHeader.SizeOfImage, 0);
        for (size_t at = 0; at < bytes.size(); at += 4096) {
            MEMORY_BASIC_INFORMATION info;
            VirtualQuery(base + at, &info, sizeof info);
            if (info.State == MEM_COMMIT && !(info.Protect & PAGE_NOACCESS)) {
                memcpy(bytes.data() + at, base + at, std::min<size_t>(4096, bytes.size() - at));
            }
        }
        return bytes;
    }();
    return image;
}

struct Places {
    unsigned headers, directory, descriptors, size;
};

const Places& KnownPlaces() {
    static const Places places = [] {
        const char* base = Pristine().data();
        Places p;
        p.headers =
            static_cast<unsigned>(reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
        auto headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + p.headers);
        p.directory = p.headers + offsetof(IMAGE_NT_HEADERS64, OptionalHeader.DataDirectory[1]);
        p.descriptors = headers->OptionalHeader.DataDirectory[1].VirtualAddress;
        p.size = headers->OptionalHeader.DataDirectory[1].Size;
        return p;
    }();
    return places;
}

// Breaks what the walk reads: the place of the headers, the signature, the directory and the
// descriptors.
void Break(char* image, Random& random) {
    const Places& p = KnownPlaces();
    const unsigned spots[] = {0x3C, p.headers, p.headers + 20, p.directory,
                              p.descriptors + random.Below(p.size)};
    for (unsigned n = random.Below(4); n > 0; --n) {
        unsigned at = spots[random.Below(5)] & ~3u;
        unsigned value = random.Below(3)
                             ? random.Below(static_cast<unsigned>(Pristine().size()) + 64)
                             : random.Border();
        memcpy(image + at, &value, sizeof value);
    }
}

bool Round(Random& random) {
    static char* const region = [] {
        size_t size = Pristine().size();
        auto base =
            static_cast<char*>(VirtualAlloc(nullptr, size + 4096, MEM_RESERVE, PAGE_NOACCESS));
        return static_cast<char*>(VirtualAlloc(base, size, MEM_COMMIT, PAGE_READWRITE));
    }();
    // Headers and imports are what rounds change; the rest of the image stays.
    static bool filled = false;
    if (!filled) memcpy(region, Pristine().data(), Pristine().size());
    filled = true;
    memcpy(region, Pristine().data(), 4096);
    memcpy(region + KnownPlaces().descriptors, Pristine().data() + KnownPlaces().descriptors,
           KnownPlaces().size);
    Break(region, random);
    auto real =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "VirtualQuery"));
    auto replacement = reinterpret_cast<void*>(&Replacement);
    void* answer = HookProc_Install(region, "kernel32.dll", "VirtualQuery", replacement);
    HookProc_Install(region, "kernel32.dll", "VirtualQuery", replacement);
    HookProc_Install(region + random.Below(64), "kernel32.dll", "VirtualQuery", replacement);
    return answer == real || answer == nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 3000, Round);
}
