#include "storage/summary/property_set_check.h"

#include <qxcore/reference.h>

#include <objbase.h>
#include <propidl.h>

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <memory>

namespace qx {

namespace {

constexpr uint32_t kTypeWidth = 4;          // of which the lower half tells
constexpr uint64_t kLongestSet = 64 << 20;  // far more than texts about a document need

struct Header {
    uint16_t byteOrder, version;
    uint32_t system;
    CLSID classId;
    uint32_t sections;
};
static_assert(sizeof(Header) == 28);

struct SectionPlace {
    FMTID format;
    uint32_t offset;
};
static_assert(sizeof(SectionPlace) == 20);

struct SectionHeader {
    uint32_t size, properties;
};

struct PropertyPlace {
    uint32_t id, offset;
};

// Bytes of which none outside are ever read.
class Bytes {
public:
    Bytes(const uint8_t* bytes, uint64_t size) : m_bytes(bytes), m_size(size) {}

    uint64_t Size() const { return m_size; }
    bool Holds(uint64_t offset, uint64_t count) const {
        return offset <= m_size && count <= m_size - offset;
    }
    template <class T>
    bool Get(uint64_t offset, T& value) const {
        if (!Holds(offset, sizeof value)) return false;
        memcpy(&value, m_bytes + offset, sizeof value);
        return true;
    }
    // REQUIRES: Holds(offset, count); so below.
    Bytes Part(uint64_t offset, uint64_t count) const {
        assert(Holds(offset, count));
        return {m_bytes + offset, count};
    }
    bool AllZero(uint64_t offset, uint64_t count) const {
        assert(Holds(offset, count));
        return std::all_of(m_bytes + offset, m_bytes + offset + count,
                           [](uint8_t byte) { return byte == 0; });
    }

private:
    const uint8_t* m_bytes;
    uint64_t m_size;
};

// The bytes of a value, or what stands in their place; a type without a row takes none.
struct TypeRow {
    uint16_t type;
    uint32_t width;  // of a plain value; of each unit behind the count of a variable one
    bool counted;    // the width stands behind a count of 4 bytes
    bool text;       // which ends with a zero unit
};

constexpr TypeRow kTypes[] = {
    {VT_I1, 1, false, false},     {VT_UI1, 1, false, false},      {VT_I2, 2, false, false},
    {VT_UI2, 2, false, false},    {VT_BOOL, 2, false, false},     {VT_I4, 4, false, false},
    {VT_UI4, 4, false, false},    {VT_INT, 4, false, false},      {VT_UINT, 4, false, false},
    {VT_R4, 4, false, false},     {VT_ERROR, 4, false, false},    {VT_I8, 8, false, false},
    {VT_UI8, 8, false, false},    {VT_R8, 8, false, false},       {VT_CY, 8, false, false},
    {VT_DATE, 8, false, false},   {VT_FILETIME, 8, false, false}, {VT_DECIMAL, 16, false, false},
    {VT_CLSID, 16, false, false}, {VT_LPSTR, 1, true, true},      {VT_BSTR, 1, true, true},
    {VT_LPWSTR, 2, true, true},   {VT_BLOB, 1, true, false},      {VT_BLOB_OBJECT, 1, true, false},
    {VT_CF, 1, true, false},
};

const TypeRow* RowOf(uint16_t type) {
    auto row = std::find_if(std::begin(kTypes), std::end(kTypes),
                            [&](const TypeRow& row) { return row.type == type; });
    return row == std::end(kTypes) ? nullptr : row;
}

class Section {
public:
    explicit Section(Bytes bytes) : m_bytes(bytes) {}

    // Whether it holds values of many parts, which not every platform can read.
    bool HasVectors() const {
        for (uint32_t i = 0; i < m_properties; ++i) {
            uint16_t type = 0;
            if (PlaceOf(i).id != PID_DICTIONARY && m_bytes.Get(PlaceOf(i).offset, type) &&
                (type & (VT_VECTOR | VT_ARRAY)))
                return true;
        }
        return false;
    }
    bool IsSound() {
        SectionHeader header;
        if (!m_bytes.Get(0, header)) return false;
        if (!m_bytes.Holds(sizeof header, uint64_t{header.properties} * sizeof(PropertyPlace)))
            return false;
        m_properties = header.properties;
        if (!FindCodePage()) return false;
        for (uint32_t i = 0; i < m_properties; ++i) {
            PropertyPlace place = PlaceOf(i);
            if (place.id == PID_DICTIONARY ? !DictionaryIsSound(place.offset)
                                           : !ValueIsSound(place.offset))
                return false;
        }
        return true;
    }

private:
    PropertyPlace PlaceOf(uint32_t index) const {
        PropertyPlace place = {};
        m_bytes.Get(sizeof(SectionHeader) + uint64_t{index} * sizeof place, place);
        return place;
    }
    bool FindCodePage();
    bool ValueIsSound(uint32_t offset) const;
    bool DictionaryIsSound(uint32_t offset) const;

    Bytes m_bytes;
    uint32_t m_properties = 0;
    bool m_isWide = false;  // the code page is that of wide characters
};

// The code page is one number, which every section has and its texts depend on: without it a
// platform may take narrow texts for wide ones, and keep half of what is written.
bool Section::FindCodePage() {
    constexpr uint16_t kWide = 1200;
    uint32_t pages = 0;
    for (uint32_t i = 0; i < m_properties; ++i) {
        PropertyPlace place = PlaceOf(i);
        uint16_t type = 0, page = 0;
        if (place.id != PID_CODEPAGE) continue;
        if (++pages > 1 || !m_bytes.Get(place.offset, type) || type != VT_I2 ||
            !m_bytes.Get(uint64_t{place.offset} + kTypeWidth, page) || page == 0)
            return false;
        m_isWide = page == kWide;
    }
    return pages == 1;
}

bool Section::ValueIsSound(uint32_t offset) const {
    uint32_t count = 0;
    uint16_t type = 0;
    if (!m_bytes.Get(offset, type)) return false;
    const TypeRow* row = RowOf(type);
    if (!row) return true;
    uint64_t at = uint64_t{offset} + kTypeWidth;
    if (!row->counted) return m_bytes.Holds(at, row->width);
    if (!m_bytes.Get(at, count)) return false;
    at += sizeof count;
    uint64_t size = uint64_t{count} * row->width;
    if (!m_bytes.Holds(at, size)) return false;
    if (!row->text) return true;
    uint64_t end = m_isWide ? 2 : row->width;
    return size >= end && m_bytes.AllZero(at + size - end, end);
}

// Names of properties: each its number, its length with the terminator, and its characters.
bool Section::DictionaryIsSound(uint32_t offset) const {
    uint32_t names = 0;
    if (!m_bytes.Get(offset, names)) return false;
    uint64_t at = uint64_t{offset} + sizeof names;
    for (uint32_t i = 0; i < names; ++i) {
        PropertyPlace name;  // a number and, here, a length
        if (!m_bytes.Get(at, name)) return false;
        at += sizeof name;
        uint64_t unit = m_isWide ? 2 : 1, size = name.offset * unit;
        if (size == 0 || !m_bytes.Holds(at, size) || !m_bytes.AllZero(at + size - unit, unit))
            return false;
        at += m_isWide ? (size + 3) & ~uint64_t{3} : size;
    }
    return true;
}

// The platform's stand-in on other systems ends the process over a vector.
bool PlatformReadsVectors() {
    return !GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version");
}

// A section's size counts the bytes that fill up its last value, which need not be there.
PropertySetState StateOfSection(Bytes bytes, uint32_t offset) {
    constexpr uint32_t kMostFilling = 3;
    SectionHeader header;
    if (!bytes.Get(offset, header)) return PropertySetState::Damaged;
    uint64_t rest = bytes.Size() - offset;
    if (header.size > rest + kMostFilling) return PropertySetState::Damaged;
    Section section(bytes.Part(offset, std::min<uint64_t>(header.size, rest)));
    if (!section.IsSound()) return PropertySetState::Damaged;
    return section.HasVectors() && !PlatformReadsVectors() ? PropertySetState::Alien
                                                           : PropertySetState::Sound;
}

PropertySetState StateOf(Bytes bytes) {
    constexpr uint16_t kLittleEndian = 0xFFFE;
    Header header;
    if (!bytes.Get(0, header) || header.byteOrder != kLittleEndian || header.sections < 1 ||
        header.sections > 2)
        return PropertySetState::Damaged;
    auto state = PropertySetState::Sound;
    for (uint32_t i = 0; i < header.sections; ++i) {
        SectionPlace place;
        if (!bytes.Get(sizeof header + i * sizeof place, place)) return PropertySetState::Damaged;
        PropertySetState section = StateOfSection(bytes, place.offset);
        if (section == PropertySetState::Damaged) return section;
        if (section == PropertySetState::Alien) state = section;
    }
    return state;
}

}  // namespace

PropertySetState StateOfPropertySet(IStorage* storage, const FMTID& format) {
    constexpr size_t kNameSize = 32;  // of an element, with its terminator
    OLECHAR name[kNameSize];
    Reference<IStream> stream;
    if (FAILED(FmtIdToPropStgName(&format, name)) ||
        FAILED(storage->OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                                   stream.Receive())))
        return PropertySetState::Sound;
    STATSTG facts = {};
    if (FAILED(stream->Stat(&facts, STATFLAG_NONAME))) return PropertySetState::Sound;
    uint64_t size = facts.cbSize.QuadPart;
    if (size > kLongestSet) return PropertySetState::Damaged;
    auto bytes = std::make_unique<uint8_t[]>(size);
    ULONG read = 0;
    if (FAILED(stream->Read(bytes.get(), static_cast<ULONG>(size), &read)))
        return PropertySetState::Sound;
    return StateOf(Bytes(bytes.get(), read));
}

}  // namespace qx
