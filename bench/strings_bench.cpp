// Strings beside std::string, and Format beside snprintf and, where it is installed, fmt.
#include "bench/measure.h"

#include <qxcore.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#if defined(QXCORE_BENCH_FMT)
#include <fmt/printf.h>
#endif

namespace {

// A program without the library has its strings from the runtime's malloc.
template <class T>
struct MallocAllocator {
    using value_type = T;
    MallocAllocator() = default;
    template <class U>
    MallocAllocator(const MallocAllocator<U>&) {}
    T* allocate(size_t n) { return static_cast<T*>(malloc(n * sizeof(T))); }
    void deallocate(T* p, size_t) { free(p); }
    friend bool operator==(const MallocAllocator&, const MallocAllocator&) { return true; }
};
using String = std::basic_string<char, std::char_traits<char>, MallocAllocator<char>>;

constexpr char kText[] = "thirty-two characters of a text.";
constexpr char kMore[] = "and thirty-two characters after.";
constexpr char kPath[] = "c:\\program files\\vendor\\product\\document.txt";
static_assert(sizeof kText == 33 && sizeof kMore == 33);

QXCORE_NOINLINE CXString ByValue(const CXString& s) {
    return s;
}
QXCORE_NOINLINE String ByValue(const String& s) {
    return s;
}

void BenchCopies(const CXString& ours, const String& peer) {
    bench::Compare(
        "string copy, 32 characters", "std::string",
        [&] {
            CXString copy(ours);
            bench::Keep(copy);
        },
        [&] {
            String copy(peer);
            bench::Keep(copy);
        });
    bench::Compare(
        "string returned by value, 32 characters", "std::string",
        [&] { bench::Keep(ByValue(ours)); }, [&] { bench::Keep(ByValue(peer)); });
    bench::Compare(
        "string from text, 32 characters", "std::string", [&] { bench::Keep(CXString(kText)); },
        [&] { bench::Keep(String(kText)); });
    CXString otherOurs(kMore);
    String otherPeer(kMore);
    bench::Compare(
        "concatenate 32 + 32", "std::string", [&] { bench::Keep(ours + otherOurs); },
        [&] { bench::Keep(peer + otherPeer); });
}

void BenchReading(const CXString& ours, const String& peer) {
    bench::Compare(
        "length, 32 characters", "strlen", [&] { bench::Keep(ours.GetLength()); },
        [&] { bench::Keep(strlen(peer.c_str())); });
    bench::Compare(
        "find a word", "std::string", [&] { bench::Keep(ours.Find("text")); },
        [&] { bench::Keep(peer.find("text")); });
    bench::Compare(
        "find a character", "std::string", [&] { bench::Keep(ours.Find(L'x')); },
        [&] { bench::Keep(peer.find('x')); });
    String samePeer(kText);
    bench::Compare(
        "compare, 32 equal characters", "std::string", [&] { bench::Keep(ours.Compare(kText)); },
        [&] { bench::Keep(peer.compare(samePeer)); });
    CXString path(kPath);
    String peerPath(kPath);
    bench::Compare(
        "extension of a path", "std::string", [&] { bench::Keep(path.GetFileExt()); },
        [&] { bench::Keep(peerPath.find_last_of(":\\/.")); });
}

void BenchFormat() {
    constexpr char kFormat[] = "%s: %d items, %.3f";
    char buffer[128];
    CXString reused;
    auto intoReused = [&] {
        reused.Format(kFormat, "name", 42, 3.25);
        bench::Keep(reused);
    };
    auto fresh = [&] {
        CXString s;
        s.Format(kFormat, "name", 42, 3.25);
        bench::Keep(s);
    };
    auto runtime = [&] {
        bench::Keep(_snprintf(buffer, sizeof buffer, kFormat, "name", 42, 3.25));
    };
    bench::Compare("Format into a reused buffer", "_snprintf", intoReused, runtime);
    bench::Compare("Format into a fresh string", "_snprintf", fresh, runtime);
#if defined(QXCORE_BENCH_FMT)
    auto fmt = [&] { bench::Keep(fmt::sprintf(kFormat, "name", 42, 3.25)); };
    bench::Compare("Format into a reused buffer", "fmt::sprintf", intoReused, fmt);
    bench::Compare("Format into a fresh string", "fmt::sprintf", fresh, fmt);
#endif
}

}  // namespace

int main() {
    CXString ours(kText);
    String peer(kText);
    BenchCopies(ours, peer);
    BenchReading(ours, peer);
    BenchFormat();
}
