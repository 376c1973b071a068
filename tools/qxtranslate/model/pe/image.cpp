#include "tools/qxtranslate/model/pe/image.h"

#include <algorithm>

namespace qx {

namespace {

constexpr uint16_t kDosSignature = 0x5A4D;
constexpr uint32_t kPeSignature = 0x4550;
constexpr uint16_t kMagic32 = 0x10B;
constexpr uint16_t kMagic64 = 0x20B;
constexpr unsigned kMaxDirectories = 16;
constexpr size_t kSectionHeader = 40;
constexpr const char* kHeader = "the file header";

// Where the file header begins.
uint64_t FindHeader(Bytes file) {
    if (file.size() < 64 || WordAt(file, 0, kHeader) != kDosSignature)
        throw BadInput("is no Windows program or library");
    uint64_t at = LongAt(file, 0x3C, kHeader);
    if (at + 4 > file.size()) throw BadInput("is no Windows program or library");
    if (WordAt(file, at, kHeader) == 0x454E) throw BadInput("is a 16-bit program");
    if (LongAt(file, at, kHeader) != kPeSignature)
        throw BadInput("is no Windows program or library");
    return at;
}

}  // namespace

PeImage::PeImage(Bytes file) : m_file(file) {
    uint64_t header = FindHeader(file);
    m_machine = WordAt(file, header + 4, kHeader);
    unsigned sections = WordAt(file, header + 6, kHeader);
    uint64_t optionalSize = WordAt(file, header + 20, kHeader);
    uint64_t optional = header + 24;
    uint16_t magic = WordAt(file, optional, kHeader);
    if (magic != kMagic32 && magic != kMagic64) throw BadInput("is no Windows program or library");
    m_is64 = magic == kMagic64;
    m_imageBase = m_is64 ? NumberAt<uint64_t>(file, optional + 24, kHeader)
                         : LongAt(file, optional + 28, kHeader);
    m_headers = LongAt(file, optional + 60, kHeader);
    uint64_t countAt = optional + (m_is64 ? 108 : 92);
    unsigned count = std::min(LongAt(file, countAt, kHeader), kMaxDirectories);
    for (unsigned i = 0; i < count && countAt + 12 + 8 * i <= optional + optionalSize; ++i) {
        uint64_t at = countAt + 4 + 8 * i;
        m_directories.push_back({LongAt(file, at, kHeader), LongAt(file, at + 4, kHeader)});
    }
    ReadSections(optional + optionalSize, sections);
}

void PeImage::ReadSections(uint64_t at, unsigned count) {
    for (unsigned i = 0; i < count; ++i, at += kSectionHeader) {
        m_sections.push_back({LongAt(m_file, at + 12, kHeader), LongAt(m_file, at + 8, kHeader),
                              LongAt(m_file, at + 20, kHeader), LongAt(m_file, at + 16, kHeader)});
    }
}

PeImage::Directory PeImage::Find(PeDirectory which) const {
    auto index = static_cast<size_t>(which);
    return index < m_directories.size() ? m_directories[index] : Directory{};
}

Bytes PeImage::From(uint32_t address, const char* what) const {
    for (const Section& s : m_sections) {
        if (address < s.address || address - s.address >= s.stored) continue;
        uint64_t within = address - s.address;
        uint64_t offset = s.offset + within;
        if (offset >= m_file.size()) break;
        uint64_t size = std::min<uint64_t>(s.stored - within, m_file.size() - offset);
        return m_file.subspan(static_cast<size_t>(offset), static_cast<size_t>(size));
    }
    if (address < m_headers && address < m_file.size())
        return m_file.subspan(address, std::min<size_t>(m_headers, m_file.size()) - address);
    throw BadInput(std::string(what) + " lies outside the file");
}

std::string PeImage::TextAt(uint32_t address, const char* what) const {
    Bytes bytes = From(address, what);
    auto end = std::find(bytes.begin(), bytes.end(), 0);
    if (end == bytes.end()) throw BadInput(std::string(what) + " reaches beyond the end");
    return std::string(bytes.begin(), end);
}

std::vector<Bytes> PeImage::Sections() const {
    std::vector<Bytes> sections;
    for (const Section& s : m_sections) {
        if (s.stored && s.offset < m_file.size())
            sections.push_back(
                m_file.subspan(s.offset, std::min<size_t>(s.stored, m_file.size() - s.offset)));
    }
    return sections;
}

}  // namespace qx
