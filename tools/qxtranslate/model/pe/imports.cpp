#include "tools/qxtranslate/model/pe/imports.h"

#include "tools/qxtranslate/model/text/unicode.h"

#include <functional>
#include <set>

namespace qx {

namespace {

constexpr const char* kTable = "the import table";

class ImportReader {
public:
    explicit ImportReader(const PeImage& image) : m_image(image) {}

    std::vector<Import> Read() {
        EachDescriptor(PeDirectory::Import, 20, 12, [&](Bytes descriptor) {
            uint32_t names = LongAt(descriptor, 0, kTable);
            uint32_t slots = LongAt(descriptor, 16, kTable);
            Functions(LongAt(descriptor, 12, kTable), names ? names : slots, false);
        });
        EachDescriptor(PeDirectory::DelayImport, 32, 4, [&](Bytes descriptor) {
            // Old files give addresses where others give distances from the image's base.
            bool isDistance = LongAt(descriptor, 0, kTable) & 1;
            auto base = isDistance ? 0 : static_cast<uint32_t>(m_image.ImageBase());
            Functions(LongAt(descriptor, 4, kTable) - base, LongAt(descriptor, 16, kTable) - base,
                      true);
        });
        return std::move(m_imports);
    }

private:
    void EachDescriptor(PeDirectory which, size_t size, size_t nameAt,
                        const std::function<void(Bytes)>& visit) {
        PeImage::Directory directory = m_image.Find(which);
        if (!directory.address) return;
        Bytes table = m_image.From(directory.address, kTable);
        for (uint64_t at = 0;; at += size) {
            Bytes descriptor = Part(table, at, size, kTable);
            if (!LongAt(descriptor, nameAt, kTable)) return;
            visit(descriptor);
        }
    }

    void Functions(uint32_t nameAddress, uint32_t slotAddress, bool isDelayed) {
        std::string library = m_image.TextAt(nameAddress, kTable);
        Bytes slots = m_image.From(slotAddress, kTable);
        size_t size = m_image.Is64Bit() ? 8 : 4;
        for (uint64_t at = 0;; at += size) {
            // Tables that share their slots would be read again and again.
            if (++m_visited > kMaxImports) throw BadInput("the import table loops");
            uint64_t slot =
                size == 8 ? NumberAt<uint64_t>(slots, at, kTable) : LongAt(slots, at, kTable);
            if (!slot) return;
            Import import = {library, {}, 0, isDelayed};
            if (slot >> (8 * size - 1)) {
                import.ordinal = slot & 0xFFFF;
            } else {
                import.function = m_image.TextAt(static_cast<uint32_t>(slot) + 2, kTable);
            }
            m_imports.push_back(import);
        }
    }

    static constexpr size_t kMaxImports = 200000;
    const PeImage& m_image;
    size_t m_visited = 0;
    std::vector<Import> m_imports;
};

}  // namespace

std::vector<Import> ReadImports(const PeImage& image) {
    return ImportReader(image).Read();
}

namespace {

constexpr size_t kMaxName = 64;

bool IsNameByte(uint8_t c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
           c == '-' || c == '.';
}

bool IsLibrary(const std::string& lower) {
    static const std::set<std::string> kOfTheSystem = {
        "advapi32.dll", "gdi32.dll",    "kernel32.dll", "kernelbase.dll", "msvcrt.dll",
        "ntdll.dll",    "ucrtbase.dll", "user32.dll",   "win32u.dll",
    };
    bool isSet = lower.starts_with("api-ms-") || lower.starts_with("ext-ms-");
    return lower.size() > 4 && lower.ends_with(".dll") && !isSet && !kOfTheSystem.count(lower);
}

// Libraries that are there for what they show.
bool IsShownLibrary(const std::string& lower) {
    return lower.size() > 4 && (lower.ends_with(".cpl") || lower.ends_with(".ocx"));
}

// The texts of a section that are nothing but one name, in lower case.
template <class Character, class Visit>
void EachName(Bytes section, Visit visit) {
    std::string name;
    bool isWhole = true;  // the name begins where a text begins
    for (size_t at = 0; at + sizeof(Character) <= section.size(); at += sizeof(Character)) {
        auto c = NumberAt<Character>(section, at, "a section");
        if (c < 0x80 && IsNameByte(static_cast<uint8_t>(c)) && name.size() < kMaxName) {
            name += static_cast<char>(c);
            continue;
        }
        if (c == 0 && isWhole && !name.empty()) visit(LowerAscii(name));
        isWhole = c == 0;
        name.clear();
    }
}

}  // namespace

std::vector<std::string> ImportedLibraries(const std::vector<Import>& imports) {
    std::set<std::string> libraries;
    for (const Import& import : imports) {
        std::string lower = LowerAscii(import.library);
        if (IsLibrary(lower)) libraries.insert(lower);
    }
    return std::vector<std::string>(libraries.begin(), libraries.end());
}

std::vector<std::string> NamedLibraries(const PeImage& image) {
    std::set<std::string> libraries;
    for (Bytes section : image.Sections()) {
        EachName<uint16_t>(section, [&](const std::string& name) {
            if (IsLibrary(name) || IsShownLibrary(name)) libraries.insert(name);
        });
        EachName<uint8_t>(section, [&](const std::string& name) {
            if (IsShownLibrary(name)) libraries.insert(name);
        });
    }
    return std::vector<std::string>(libraries.begin(), libraries.end());
}

std::unordered_set<std::string> CollectNames(const PeImage& image) {
    std::unordered_set<std::string> names;
    for (Bytes section : image.Sections()) {
        std::string name;
        for (uint8_t c : section) {
            if (IsNameByte(c)) {
                name += static_cast<char>(c);
                continue;
            }
            if (c == 0 && !name.empty() && name.size() <= kMaxName) names.insert(name);
            name.clear();
        }
    }
    return names;
}

}  // namespace qx
