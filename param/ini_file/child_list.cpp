#include "param/ini_file/child_list.h"

#include "param/ini_file/profile.h"
#include "strings/characters.h"

#include <qxcore/hash.h>

#include <bit>
#include <cstring>
#include <memory>
#include <string_view>

namespace qx {

namespace {

constexpr char kDelimiter = '\\';
constexpr char kRoot[] = "\\";

// Names, each once, one behind the other.
class UniqueNames {
public:
    UniqueNames(char* block, size_t mostNames)
        : m_block(block),
          m_slots(std::bit_ceil(2 * mostNames + 2)),
          m_places(new unsigned short[m_slots]()) {}

    void Add(std::string_view name) {
        static_assert(kProfileBlockSize <= 0xFFFF,
                      "places and the mark of a free slot are 16 bits");
        char* text = m_block + m_size;
        memcpy(text, name.data(), name.size());
        text[name.size()] = 0;
        size_t slot = FirstSlot(QXHashText(text).hash);
        for (; m_places[slot]; slot = (slot + 1) & (m_slots - 1)) {
            if (strcmp(m_block + m_places[slot] - 1, text) == 0) return;
        }
        m_places[slot] = static_cast<unsigned short>(m_size + 1);
        m_size += name.size() + 1;
    }
    void End() { m_block[m_size] = 0; }

private:
    char* m_block;
    size_t m_size = 0;
    const size_t m_slots;                        // a power of two
    std::unique_ptr<unsigned short[]> m_places;  // in the block, counted from 1; 0 is free

    // Names that follow each other have hashes that do, so all bits of one decide.
    size_t FirstSlot(unsigned hash) const {
        constexpr unsigned kSpread = 0x9E3779B1;
        return (hash * kSpread) >> (32 - std::countr_zero(m_slots));
    }
};

size_t CountTexts(const char* block) {
    size_t count = 0;
    for (; *block; block += strlen(block) + 1) ++count;
    return count;
}

// Whether a section's name begins with a node's: without regard to case, but never by half a
// character, whose second byte may look like a letter.
bool BeginsWith(const char* section, const char* node, size_t nodeSize, Characters characters) {
    if (_strnicmp(section, node, nodeSize) != 0) return false;
    if (!characters.HasDoubleByte()) return true;
    for (size_t at = 0, size; at < nodeSize; at += size) {
        size = characters.SizeAt(node + at);
        if (size == 2 && memcmp(section + at, node + at, size) != 0) return false;
    }
    return true;
}

// The child of the node that a section stands for or lies below; empty where there is none.
std::string_view ChildIn(const char* section, const char* node, bool isRoot,
                         Characters characters) {
    const size_t nodeSize = strlen(node);
    if (strcmp(section, kRoot) == 0 || !BeginsWith(section, node, nodeSize, characters)) return {};
    const char* rest = section + nodeSize;
    if (!isRoot && *rest != kDelimiter) return {};
    if (!rest[0] || !rest[1]) return {};
    if (*rest == kDelimiter) ++rest;
    const char* end = characters.Find(rest, kDelimiter);
    return end ? std::string_view(rest, static_cast<size_t>(end - rest)) : rest;
}

}  // namespace

const char* ListChildren(const char* sections, const char* node, bool isRoot) {
    static char block[kProfileBlockSize + 1];
    const Characters characters = Characters::OfRuntime();
    UniqueNames names(block, CountTexts(sections));
    for (; *sections; sections += strlen(sections) + 1) {
        std::string_view child = ChildIn(sections, node, isRoot, characters);
        if (!child.empty()) names.Add(child);
    }
    names.End();
    return block;
}

}  // namespace qx
