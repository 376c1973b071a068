#include "storage/compound/compound_check.h"

#include "file/platform/handles.h"

#include <qxcore/platform.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace qx {
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

// A file on a disk, read past the file layer, which would put the program's own lock on it back
// that the host has lifted in order to open it.
class DiskFile {
public:
    explicit DiskFile(const char* path)
        : m_handle(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS, nullptr)) {}

    // False also for what is no file: a device might never answer.
    bool IsOpen() const { return m_handle && GetFileType(m_handle.Get()) == FILE_TYPE_DISK; }
    uint64_t Length() const {
        LARGE_INTEGER length = {};
        GetFileSizeEx(m_handle.Get(), &length);
        return length.QuadPart;
    }
    // What lies behind the end of the file, and what cannot be read, reads as zeros.
    void Read(uint64_t offset, void* buffer, uint32_t count) const {
        OVERLAPPED place = {};
        place.Offset = static_cast<DWORD>(offset);
        place.OffsetHigh = static_cast<DWORD>(offset >> 32);
        DWORD delivered = 0;
        ReadFile(m_handle.Get(), buffer, count, &delivered, &place);
        memset(static_cast<char*>(buffer) + delivered, 0, count - delivered);
    }

private:
    KernelHandle m_handle;
};

// Sector numbers in the order in which they were found. They take no more room than the file took
// to list them, whatever it claims to list.
class SectorList {
public:
    void Append(const uint32_t* sectors, size_t count) {
        if (m_count + count > m_room) Grow(m_count + count);
        std::copy_n(sectors, count, m_sectors.get() + m_count);
        m_count += count;
    }
    size_t Count() const { return m_count; }
    const uint32_t* begin() const { return m_sectors.get(); }
    const uint32_t* end() const { return m_sectors.get() + m_count; }

private:
    void Grow(size_t needed) {
        m_room = std::max(needed, 2 * m_room);
        auto grown = std::make_unique<uint32_t[]>(m_room);
        std::copy(begin(), end(), grown.get());
        m_sectors = std::move(grown);
    }

    std::unique_ptr<uint32_t[]> m_sectors;
    size_t m_count = 0;
    size_t m_room = 0;
};

// Sectors that point to their successors. Each belongs to one chain at most.
class SectorTable {
public:
    void Resize(size_t count) {
        m_next = std::make_unique<uint32_t[]>(count);
        m_taken = std::make_unique<bool[]>(count);
        m_count = count;
    }
    uint32_t* Next() { return m_next.get(); }
    size_t Count() const { return m_count; }

    bool Take(uint32_t sector) {
        if (sector >= m_count || m_taken[sector]) return false;
        return m_taken[sector] = true;
    }
    // Takes sectors that must carry this mark instead of a successor.
    bool TakeMarked(const SectorList& sectors, uint32_t mark) {
        return std::all_of(sectors.begin(), sectors.end(),
                           [&](uint32_t sector) { return Take(sector) && m_next[sector] == mark; });
    }
    // Takes a whole chain of sectors below `limit` and tells each one.
    template <class Visit>
    bool TakeChain(uint32_t sector, uint64_t limit, Visit visit) {
        for (; sector != kEndOfChain; sector = m_next[sector]) {
            if (sector >= limit || !Take(sector)) return false;
            visit(sector);
        }
        return true;
    }

private:
    std::unique_ptr<uint32_t[]> m_next;
    std::unique_ptr<bool[]> m_taken;
    size_t m_count = 0;
};

// Every number and size comes from the file, so they are multiplied in 64 bits.
class CompoundFile {
public:
    explicit CompoundFile(const DiskFile& file) : m_file(file), m_length(file.Length()) {}

    bool IsSound() {
        if (!ReadHeader()) return true;
        return HeaderIsSound() && ReadFat() && ReadDirectory() && ReadMiniFat() && TreeIsSound();
    }

private:
    bool ReadHeader();
    bool HeaderIsSound() const;
    bool MeasureSectors();
    bool ReadFat();
    bool ListFatSectors(SectorList& sectors, SectorList& lists);
    bool ReadDirectory();
    bool ReadMiniFat();
    bool TreeIsSound();
    bool EntryIsSound(const Entry& entry);
    bool StreamIsSound(const Entry& entry);

    uint64_t SizeOf(const Entry& entry) const {
        return m_header.majorVersion < 4 ? entry.size
                                         : entry.size | static_cast<uint64_t>(entry.sizeHigh) << 32;
    }
    void Read(uint32_t sector, void* buffer) {
        m_file.Read((sector + uint64_t{1}) * m_sectorSize, buffer, m_sectorSize);
    }
    // Reads the sectors that hold a table of `ids` entries, as far as there are such sectors.
    void ReadTable(const SectorList& sectors, uint64_t ids, SectorTable& table);

    const DiskFile& m_file;
    uint64_t m_length;
    Header m_header = {};
    uint32_t m_sectorSize = 0;
    uint32_t m_sectors = 0;  // whole and begun ones behind the header
    uint32_t m_idsPerSector = 0;
    SectorTable m_fat, m_miniFat;
    std::unique_ptr<Entry[]> m_entries;
    uint64_t m_entryCount = 0;
    uint64_t m_miniSectors = 0;
};

bool CompoundFile::ReadHeader() {
    if (m_length < sizeof m_header) return false;
    m_file.Read(0, &m_header, sizeof m_header);
    return memcmp(m_header.signature, kSignature, sizeof kSignature) == 0;
}

bool CompoundFile::HeaderIsSound() const {
    int shift = m_header.majorVersion == 4 ? 12 : 9;
    return (m_header.majorVersion == 3 || m_header.majorVersion == 4) &&
           m_header.sectorShift == shift && m_header.miniShift == kMiniShift &&
           m_header.miniCutoff == kMiniCutoff;
}

bool CompoundFile::MeasureSectors() {
    m_sectorSize = 1u << m_header.sectorShift;
    m_idsPerSector = m_sectorSize / sizeof(uint32_t);
    uint64_t whole = m_length <= m_sectorSize ? 0 : (m_length - 1) / m_sectorSize;
    m_sectors = static_cast<uint32_t>(std::min<uint64_t>(whole, kDifatSector));
    return m_sectors == whole;
}

// The sectors of the table of sectors are listed in the header and, beyond that, in a chain of
// sectors of their own whose last number is the next link. A chain that runs in a circle comes past
// a link that it left behind at a power of two.
bool CompoundFile::ListFatSectors(SectorList& sectors, SectorList& lists) {
    uint32_t left = m_header.fatSectors;
    auto append = [&](const uint32_t* ids, uint32_t room) {
        uint32_t count = std::min(left, room);
        sectors.Append(ids, count);
        left -= count;
    };
    append(m_header.fat, kFatSectorsInHeader);
    auto ids = std::make_unique<uint32_t[]>(m_idsPerSector);
    uint32_t list = m_header.firstDifat, leftBehind = kNothing;
    for (uint32_t i = 0; i < m_header.difatSectors; ++i) {
        if (list >= m_sectors || list == leftBehind) return false;
        if ((i & (i - 1)) == 0) leftBehind = list;
        lists.Append(&list, 1);
        Read(list, ids.get());
        append(ids.get(), m_idsPerSector - 1);
        list = ids[m_idsPerSector - 1];
    }
    return left == 0;
}

void CompoundFile::ReadTable(const SectorList& sectors, uint64_t ids, SectorTable& table) {
    uint64_t needed =
        std::min<uint64_t>((ids + m_idsPerSector - 1) / m_idsPerSector, sectors.Count());
    table.Resize(needed * m_idsPerSector);
    for (uint64_t i = 0; i < needed; ++i)
        Read(sectors.begin()[i], table.Next() + i * m_idsPerSector);
}

bool CompoundFile::ReadFat() {
    SectorList sectors, lists;
    if (!MeasureSectors() || !ListFatSectors(sectors, lists)) return false;
    if (std::any_of(sectors.begin(), sectors.end(),
                    [&](uint32_t sector) { return sector >= m_sectors; }))
        return false;
    ReadTable(sectors, m_sectors, m_fat);
    return m_fat.TakeMarked(sectors, kFatSector) && m_fat.TakeMarked(lists, kDifatSector);
}

bool CompoundFile::ReadDirectory() {
    uint32_t perSector = m_sectorSize / sizeof(Entry);
    uint64_t sectors = 0;
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
    uint64_t size = SizeOf(m_entries[0]), sectors = 0;
    if (size && !m_fat.TakeChain(m_entries[0].start, m_sectors, [&](uint32_t) { ++sectors; }))
        return false;
    if (size > sectors * m_sectorSize) return false;
    m_miniSectors = (size + (1u << kMiniShift) - 1) >> kMiniShift;

    if (!m_header.miniFatSectors) return true;
    SectorList tables;
    if (!m_fat.TakeChain(m_header.firstMiniFat, m_sectors,
                         [&](uint32_t sector) { tables.Append(&sector, 1); }) ||
        tables.Count() != m_header.miniFatSectors)
        return false;
    ReadTable(tables, m_miniSectors, m_miniFat);
    return true;
}

bool CompoundFile::StreamIsSound(const Entry& entry) {
    uint64_t size = SizeOf(entry), parts = 0;
    if (size == 0) return true;
    bool mini = size < kMiniCutoff;
    SectorTable& table = mini ? m_miniFat : m_fat;
    if (!table.TakeChain(entry.start, mini ? m_miniSectors : m_sectors, [&](uint32_t) { ++parts; }))
        return false;
    return size <= parts << (mini ? kMiniShift : m_header.sectorShift);
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
    uint64_t waiting = 0;
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
    DiskFile file(path);
    return !file.IsOpen() || CompoundFile(file).IsSound();
}

}  // namespace qx
