#include "storage/compound/compound_check.h"

#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/reference.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace {

constexpr uint32_t kDifatSector = 0xFFFFFFFC;
constexpr uint32_t kFatSector = 0xFFFFFFFD;
constexpr uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr uint32_t kNothing = 0xFFFFFFFF;  // a free sector, or no entry

constexpr uint8_t kSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr int kMiniShift = 6;
constexpr uint32_t kMiniCutoff = 4096;  // smaller streams lie in the mini stream
constexpr uint32_t kFatSectorsInHeader = 109;

struct Header {
    uint8_t signature[8];
    uint8_t classId[16];
    uint16_t minorVersion, majorVersion, byteOrder, sectorShift, miniShift;
    uint8_t reserved[6];
    uint32_t directorySectors, fatSectors, firstDirectory, transaction, miniCutoff;
    uint32_t firstMiniFat, miniFatSectors, firstDifat, difatSectors;
    uint32_t fat[kFatSectorsInHeader];
};
static_assert(sizeof(Header) == 512);

enum : uint8_t { kStorageEntry = 1, kStreamEntry = 2, kRootEntry = 5 };

#pragma pack(push, 1)
struct Entry {
    uint16_t name[32];
    uint16_t nameBytes;
    uint8_t type, colour;
    uint32_t left, right, child;
    uint8_t classId[16];
    uint32_t state;
    uint64_t created, changed;
    uint32_t start, size, sizeHigh;
};
#pragma pack(pop)
static_assert(sizeof(Entry) == 128);

// Sectors that point to their successors. Each belongs to one chain at most.
class SectorTable {
public:
    void Resize(uint32_t count) {
        m_next = std::make_unique<uint32_t[]>(count);
        m_taken = std::make_unique<bool[]>(count);
        m_count = count;
    }
    uint32_t* Next() { return m_next.get(); }
    uint32_t Count() const { return m_count; }

    bool Take(uint32_t sector) {
        if (sector >= m_count || m_taken[sector]) return false;
        return m_taken[sector] = true;
    }
    // Takes a sector that must carry this mark instead of a successor.
    bool TakeMarked(uint32_t sector, uint32_t mark) {
        return Take(sector) && m_next[sector] == mark;
    }
    // Takes a whole chain of less than `limit` sectors and tells each one.
    template <class Visit>
    bool TakeChain(uint32_t sector, uint32_t limit, Visit visit) {
        for (; sector != kEndOfChain; sector = m_next[sector]) {
            if (sector >= limit || !Take(sector)) return false;
            visit(sector);
        }
        return true;
    }

private:
    std::unique_ptr<uint32_t[]> m_next;
    std::unique_ptr<bool[]> m_taken;
    uint32_t m_count = 0;
};

class CompoundFile {
public:
    explicit CompoundFile(IXFile* file) : m_file(file), m_length(file->GetLength()) {}

    bool IsSound() {
        if (!ReadHeader()) return true;
        return HeaderIsSound() && ReadFat() && ReadDirectory() && ReadMiniFat() && TreeIsSound();
    }

private:
    bool ReadHeader();
    bool HeaderIsSound() const;
    bool ReadFat();
    bool ListFatSectors(uint32_t* sectors, uint32_t* lists);
    bool ReadDirectory();
    bool ReadMiniFat();
    bool TreeIsSound();
    bool EntryIsSound(const Entry& entry);
    bool StreamIsSound(const Entry& entry);

    uint64_t SizeOf(const Entry& entry) const {
        return m_header.majorVersion < 4 ? entry.size
                                         : entry.size | static_cast<uint64_t>(entry.sizeHigh) << 32;
    }
    // What lies behind the end of the file reads as zeros.
    void Read(uint32_t sector, void* buffer) {
        memset(buffer, 0, m_sectorSize);
        m_file->Seek((sector + 1ll) * m_sectorSize, QXSEEK_START);
        m_file->Read(buffer, m_sectorSize);
    }

    IXFile* m_file;
    uint64_t m_length;
    Header m_header = {};
    uint32_t m_sectorSize = 0;
    uint32_t m_sectors = 0;  // whole and begun ones behind the header
    uint32_t m_idsPerSector = 0;
    SectorTable m_fat, m_miniFat;
    std::unique_ptr<Entry[]> m_entries;
    uint32_t m_entryCount = 0;
    uint32_t m_miniSectors = 0;
};

bool CompoundFile::ReadHeader() {
    return m_file->Read(&m_header, sizeof m_header) == sizeof m_header &&
           memcmp(m_header.signature, kSignature, sizeof kSignature) == 0;
}

bool CompoundFile::HeaderIsSound() const {
    int shift = m_header.majorVersion == 4 ? 12 : 9;
    return (m_header.majorVersion == 3 || m_header.majorVersion == 4) &&
           m_header.sectorShift == shift && m_header.miniShift == kMiniShift &&
           m_header.miniCutoff == kMiniCutoff;
}

// The sectors of the table of sectors are listed in the header and, beyond that, in a chain of
// sectors of their own whose last number is the next link.
bool CompoundFile::ListFatSectors(uint32_t* sectors, uint32_t* lists) {
    uint32_t known = std::min(m_header.fatSectors, kFatSectorsInHeader);
    std::copy_n(m_header.fat, known, sectors);
    auto ids = std::make_unique<uint32_t[]>(m_idsPerSector);
    uint32_t list = m_header.firstDifat;
    for (uint32_t i = 0; i < m_header.difatSectors; ++i) {
        if (list >= m_sectors) return false;
        lists[i] = list;
        Read(list, ids.get());
        uint32_t more = std::min(m_header.fatSectors - known, m_idsPerSector - 1);
        std::copy_n(ids.get(), more, sectors + known);
        known += more;
        list = ids[m_idsPerSector - 1];
    }
    return known == m_header.fatSectors;
}

bool CompoundFile::ReadFat() {
    m_sectorSize = 1u << m_header.sectorShift;
    m_idsPerSector = m_sectorSize / sizeof(uint32_t);
    uint64_t whole = m_length <= m_sectorSize ? 0 : (m_length - 1) / m_sectorSize;
    if (whole >= kDifatSector || m_header.fatSectors > whole || m_header.difatSectors > whole)
        return false;
    m_sectors = static_cast<uint32_t>(whole);

    auto sectors = std::make_unique<uint32_t[]>(m_header.fatSectors);
    auto lists = std::make_unique<uint32_t[]>(m_header.difatSectors);
    if (!ListFatSectors(sectors.get(), lists.get())) return false;
    m_fat.Resize(m_header.fatSectors * m_idsPerSector);
    for (uint32_t i = 0; i < m_header.fatSectors; ++i) {
        if (sectors[i] >= m_sectors) return false;
        Read(sectors[i], m_fat.Next() + i * m_idsPerSector);
    }
    return std::all_of(&sectors[0], &sectors[m_header.fatSectors],
                       [&](uint32_t sector) { return m_fat.TakeMarked(sector, kFatSector); }) &&
           std::all_of(&lists[0], &lists[m_header.difatSectors],
                       [&](uint32_t sector) { return m_fat.TakeMarked(sector, kDifatSector); });
}

bool CompoundFile::ReadDirectory() {
    uint32_t perSector = m_sectorSize / sizeof(Entry), sectors = 0;
    if (!m_fat.TakeChain(m_header.firstDirectory, m_sectors, [&](uint32_t) { ++sectors; }))
        return false;
    m_entryCount = sectors * perSector;
    m_entries = std::make_unique<Entry[]>(m_entryCount);
    Entry* at = m_entries.get();
    for (uint32_t sector = m_header.firstDirectory; sector != kEndOfChain;
         sector = m_fat.Next()[sector]) {
        Read(sector, at);
        at += perSector;
    }
    return m_entryCount > 0 && m_entries[0].type == kRootEntry;
}

// The mini stream is the root's own; its sectors and the table of its parts are chains like any
// other.
bool CompoundFile::ReadMiniFat() {
    uint64_t size = SizeOf(m_entries[0]);
    uint32_t sectors = 0, tables = 0;
    if (size && !m_fat.TakeChain(m_entries[0].start, m_sectors, [&](uint32_t) { ++sectors; }))
        return false;
    if (size > static_cast<uint64_t>(sectors) * m_sectorSize) return false;
    m_miniSectors = static_cast<uint32_t>((size + (1u << kMiniShift) - 1) >> kMiniShift);

    if (m_header.miniFatSectors > m_sectors) return false;
    m_miniFat.Resize(m_header.miniFatSectors * m_idsPerSector);
    if (!m_header.miniFatSectors) return true;
    bool whole = m_fat.TakeChain(m_header.firstMiniFat, m_sectors, [&](uint32_t sector) {
        if (tables < m_header.miniFatSectors)
            Read(sector, m_miniFat.Next() + tables * m_idsPerSector);
        ++tables;
    });
    return whole && tables == m_header.miniFatSectors;
}

bool CompoundFile::StreamIsSound(const Entry& entry) {
    uint64_t size = SizeOf(entry);
    if (size == 0) return true;
    bool mini = size < kMiniCutoff;
    uint32_t parts = 0;
    SectorTable& table = mini ? m_miniFat : m_fat;
    if (!table.TakeChain(entry.start, mini ? m_miniSectors : m_sectors, [&](uint32_t) { ++parts; }))
        return false;
    return size <= static_cast<uint64_t>(parts) << (mini ? kMiniShift : m_header.sectorShift);
}

bool CompoundFile::EntryIsSound(const Entry& entry) {
    int length = entry.nameBytes / 2;
    if (entry.nameBytes % 2 || length < 2 || length > 32 || entry.name[length - 1] != 0)
        return false;
    return entry.type == kStorageEntry || (entry.type == kStreamEntry && StreamIsSound(entry));
}

// Each entry hangs in one place of the tree. The entries still to be looked at wait on a pile of
// their own.
bool CompoundFile::TreeIsSound() {
    auto pile = std::make_unique<uint32_t[]>(m_entryCount);
    auto seen = std::make_unique<bool[]>(m_entryCount);
    uint32_t waiting = 0;
    auto push = [&](uint32_t id) {
        if (id == kNothing) return true;
        if (id >= m_entryCount || seen[id]) return false;
        pile[waiting++] = id;
        return seen[id] = true;
    };
    seen[0] = true;
    if (!push(m_entries[0].child)) return false;
    while (waiting) {
        const Entry& entry = m_entries[pile[--waiting]];
        if (!EntryIsSound(entry) || !push(entry.left) || !push(entry.right)) return false;
        if (entry.type == kStorageEntry && !push(entry.child)) return false;
    }
    return true;
}

}  // namespace

bool IsSoundCompoundFile(const char* path) {
    try {
        qx::Reference<IXFile> file(Fio_Open(path, QXFIO_RANDOM));
        return !file || CompoundFile(file.Get()).IsSound();
    } catch (CXFileException&) {
        return true;
    }
}
