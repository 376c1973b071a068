// Broken string table blocks of a known size: nothing behind them is read, and each entry comes out
// as it must.
#include "fuzz/fuzz_driver.h"
#include "fuzz/guarded_bytes.h"
#include "translate/resources/string_translation.h"

#include <qxcore.h>

#include <algorithm>
#include <vector>

namespace {

constexpr size_t kLongest = 1 << 16;

void Prepare() {
    static bool prepared = false;
    if (prepared) return;
    prepared = true;
    for (auto [source, target] :
         {std::pair("Open", "Auf"), {"Close", "Ein viel l\xE4ngerer Text"}, {"x", ""}}) {
        g_Wld.m_Contexts.SetAt(source, new CContext(source, target));
    }
}

std::string AnyBlock(Random& random) {
    static const wchar_t* const kTexts[] = {L"",  L"",        L"Open",     L"Close",
                                            L"x", L"Unknown", L"Op\u0416n"};
    std::wstring words;
    for (int i = 0; i < 16; ++i) {
        std::wstring text = kTexts[random.Below(7)];
        if (random.Below(40) == 0) text.assign(random.Below(3000), L'a');
        words += static_cast<wchar_t>(text.size());
        words += text;
    }
    return std::string(reinterpret_cast<const char*>(words.data()), words.size() * 2);
}

using Entries = std::vector<std::wstring>;

// The entries, with the last cut to what is there.
Entries Read(const void* data, size_t size) {
    std::wstring words(size / 2, 0);
    memcpy(words.data(), data, words.size() * 2);
    Entries entries;
    for (size_t at = 0; at < words.size(); at += words[at] + 1)
        entries.push_back(words.substr(at + 1, words[at]));
    return entries;
}

std::wstring Expected(const std::wstring& entry) {
    if (entry.empty() || entry.size() > 1024) return entry;
    auto length = static_cast<int>(entry.size());
    std::string narrow(entry.size(), 0);
    int bytes = WideCharToMultiByte(CP_ACP, 0, entry.data(), length, narrow.data(), length, nullptr,
                                    nullptr);
    narrow = narrow.substr(0, bytes).c_str();
    if (narrow.empty()) return entry;
    if (narrow == "Open") narrow = "Auf";
    if (narrow == "Close") narrow = "Ein viel l\xE4ngerer Text";
    std::wstring wide(narrow.size(), 0);
    auto narrowLength = static_cast<int>(narrow.size());
    MultiByteToWideChar(CP_ACP, 0, narrow.data(), narrowLength, wide.data(), narrowLength);
    return wide;
}

bool Round(Random& random) {
    Prepare();
    static GuardedBytes guarded(kLongest);
    std::string bytes = AnyBlock(random);
    if (random.Below(4)) Mutate(bytes, random);
    if (bytes.size() > kLongest) return true;
    Entries expected = Read(bytes.data(), bytes.size());
    bool any =
        std::any_of(expected.begin(), expected.end(), [](auto& entry) { return !entry.empty(); });
    std::transform(expected.begin(), expected.end(), expected.begin(), Expected);
    uint32_t size = 0;
    void* block = qx::TranslateStringTable(
        guarded.Place(bytes), static_cast<uint32_t>(bytes.size()), {}, &size);
    if (!block) return !any && size == 0;
    bool holds = any && Read(block, size) == expected;
    LocalFree(block);
    return holds;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 12000, Round);
}
