// Broken stored dictionaries: Restore reads what a plain reader of the streams reads, and ends as
// that one does. What it restored is saved and restored the same.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <objidl.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>

namespace {

constexpr int kEndOfStream = QXERR_EOF;
constexpr int kMostStreams = 5;

std::string Long(unsigned value) {
    return std::string(reinterpret_cast<const char*>(&value), 4);
}

std::string Text(const std::string& text) {
    return Long(static_cast<unsigned>(text.size()) + 1) + text + '\0';
}

std::string AnyText(Random& random) {
    static constexpr const char* kTexts[] = {
        "Open", "", "Auf\\n", "a\\", "\\\\t", "view.dll#1#130\xFD\xFDOpen", "x"};
    if (random.Below(20) == 0) return Text(std::string(1000 + random.Below(2000), 'l'));
    if (random.Below(10) == 0) return Long(0);
    return Text(kTexts[random.Below(std::size(kTexts))]);
}

// The streams by name: a header and its entries, one of them often damaged or missing.
std::map<std::string, std::string> AnyDictionary(Random& random) {
    std::map<std::string, std::string> streams;
    unsigned entries = random.Below(kMostStreams);
    streams["ContextHeader"] = Long(random.Below(10) ? entries : random.Border() % 1000) +
                               AnyText(random) + Long(random.Next()) + Long(random.Next());
    for (unsigned i = 0; i < entries; ++i) {
        streams["C" + std::to_string(i)] = AnyText(random) + AnyText(random) + Long(random.Next());
    }
    auto victim = std::next(streams.begin(), random.Below(unsigned(streams.size())));
    if (random.Below(2)) Mutate(victim->second, random);
    if (random.Below(8) == 0) streams.erase(victim);
    return streams;
}

struct Entry {
    std::string source, target;
    int count;
    bool operator==(const Entry&) const = default;
};

using Entries = std::map<unsigned, Entry>;

// What Restore must find, from the bytes alone.
class PlainReader {
public:
    explicit PlainReader(const std::map<std::string, std::string>& streams) : m_streams(streams) {
        try {
            Open("ContextHeader");
            count = static_cast<int>(NextLong());
            font = NextText().substr(0, 255);
            script = static_cast<int>(NextLong());
            size = static_cast<int>(NextLong());
            for (int i = 0; i < count; ++i) {
                Open("C" + std::to_string(i));
                std::string source = Unescaped(NextText()), target = Unescaped(NextText());
                entries[HashOf(source)] = {source, target, static_cast<int>(NextLong())};
            }
        } catch (int code) {
            failure = code;
        }
    }

    Entries entries;
    std::optional<int> count, script, size;
    std::optional<std::string> font;
    int failure = 0;

private:
    static unsigned HashOf(const std::string& text) {
        unsigned hash = 0;
        for (char c : text) hash = hash * 257 + static_cast<unsigned>(static_cast<signed char>(c));
        return hash;
    }
    // Of single-byte text.
    static std::string Unescaped(const std::string& text) {
        std::string out;
        bool pending = false;
        for (char c : text) {
            if (c == '\\') {
                pending = true;
                continue;
            }
            if (pending && (c == 'n' || c == 'r' || c == 't')) {
                c = c == 'n' ? '\n' : c == 'r' ? '\r' : '\t';
            } else if (pending) {
                out += '\\';
            }
            out += c;
            pending = false;
        }
        return out;
    }

    void Open(const std::string& name) {
        auto found = m_streams.find(name);
        if (found == m_streams.end()) throw int(QXERR_NOT_FOUND);
        m_bytes = found->second;
    }
    std::string Next(unsigned size) {
        if (m_bytes.size() < size) throw kEndOfStream;
        std::string bytes = m_bytes.substr(0, size);
        m_bytes.erase(0, size);
        return bytes;
    }
    // What is left of a number at the end counts.
    unsigned NextLong() {
        if (m_bytes.empty()) throw kEndOfStream;
        std::string bytes = Next(static_cast<unsigned>(std::min<size_t>(4, m_bytes.size())));
        unsigned value = 0;
        memcpy(&value, bytes.data(), bytes.size());
        return value;
    }
    std::string NextText() {
        std::string text = Next(NextLong());
        return text.substr(0, text.find('\0'));
    }

    const std::map<std::string, std::string>& m_streams;
    std::string m_bytes;
};

class StorageInMemory {
public:
    IXStorage* Get() const { return m_storage.Get(); }

    void Write(const std::map<std::string, std::string>& streams) const {
        for (auto& [name, bytes] : streams) {
            qx::Reference<IXStream> stream(m_storage->CreateStream(name.c_str()));
            stream->Write(bytes.data(), static_cast<int>(bytes.size()));
        }
    }

private:
    qx::Reference<IXStorage> m_storage{new_Storage(nullptr, 0)};
};

// 0, or the code of what came out.
int Restore(CWld& dictionary, const StorageInMemory& storage) {
    try {
        dictionary.Restore(storage.Get());
        return 0;
    } catch (CXException& failure) {
        return failure.GetCode();
    }
}

Entries EntriesOf(CWld& dictionary) {
    Entries entries;
    decltype(dictionary.m_Contexts)::position at;
    while (CContext** entry = dictionary.m_Contexts.GetNext(at)) {
        entries[at.node->hash] = {static_cast<const char*>((*entry)->source),
                                  static_cast<const char*>((*entry)->target), (*entry)->count};
    }
    return entries;
}

bool Agrees(CWld& dictionary, const PlainReader& expected) {
    return EntriesOf(dictionary) == expected.entries &&
           dictionary.m_nContexts == expected.count.value_or(0) &&
           dictionary.m_szFontName == expected.font.value_or("none") &&
           dictionary.m_nFontScript == expected.script.value_or(-7) &&
           dictionary.m_nFontSize == expected.size.value_or(-7);
}

// Texts that hold a backslash may change on the way.
bool SurvivesRoundTrip(CWld& dictionary) {
    for (auto& [hash, entry] : EntriesOf(dictionary)) {
        if ((entry.source + entry.target).find('\\') != std::string::npos) return true;
    }
    StorageInMemory storage;
    dictionary.Save(storage.Get());
    CWld again;
    bool same = Restore(again, storage) == 0 && EntriesOf(again) == EntriesOf(dictionary);
    DeleteObject(again.m_hFont);
    return same;
}

bool Round(Random& random) {
    auto streams = AnyDictionary(random);
    StorageInMemory storage;
    storage.Write(streams);
    CWld dictionary;
    strcpy(dictionary.m_szFontName, "none");
    dictionary.m_nFontScript = dictionary.m_nFontSize = -7;
    int failure = Restore(dictionary, storage);
    PlainReader expected(streams);
    bool holds = failure == expected.failure && Agrees(dictionary, expected) &&
                 SurvivesRoundTrip(dictionary);
    DeleteObject(dictionary.m_hFont);
    return holds;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 1000, Round);
}
