// Bytes of a file, read with bounds: what lies outside raises BadInput.
#ifndef QXTRANSLATE_MODEL_PE_BYTES_H
#define QXTRANSLATE_MODEL_PE_BYTES_H

#include "tools/qxtranslate/model/text/bad_input.h"

#include <cstdint>
#include <span>
#include <string>

namespace qx {

using Bytes = std::span<const uint8_t>;

inline Bytes Part(Bytes bytes, uint64_t offset, uint64_t size, const char* what) {
    if (offset > bytes.size() || size > bytes.size() - offset) {
        throw BadInput(std::string(what) + " reaches beyond the end");
    }
    return bytes.subspan(static_cast<size_t>(offset), static_cast<size_t>(size));
}

// Little-endian numbers at any address.
template <class Number>
Number NumberAt(Bytes bytes, uint64_t offset, const char* what) {
    Bytes part = Part(bytes, offset, sizeof(Number), what);
    uint64_t number = 0;
    for (size_t i = 0; i < sizeof(Number); ++i) number |= uint64_t(part[i]) << 8 * i;
    return static_cast<Number>(number);
}
inline uint16_t WordAt(Bytes bytes, uint64_t offset, const char* what) {
    return NumberAt<uint16_t>(bytes, offset, what);
}
inline uint32_t LongAt(Bytes bytes, uint64_t offset, const char* what) {
    return NumberAt<uint32_t>(bytes, offset, what);
}

// Takes one thing behind the other.
class ByteReader {
public:
    ByteReader(Bytes bytes, const char* what) : m_bytes(bytes), m_what(what) {}

    size_t At() const { return m_at; }
    size_t Left() const { return m_bytes.size() - m_at; }
    const char* What() const { return m_what; }

    Bytes Take(size_t size) {
        Bytes part = Part(m_bytes, m_at, size, m_what);
        m_at += size;
        return part;
    }
    uint16_t Word() {
        uint16_t word = WordAt(m_bytes, m_at, m_what);
        m_at += sizeof word;
        return word;
    }
    uint32_t Long() {
        uint32_t number = LongAt(m_bytes, m_at, m_what);
        m_at += sizeof number;
        return number;
    }
    // A wide text up to its terminator, which is taken too.
    std::u16string Text() {
        std::u16string text;
        while (uint16_t c = Word()) text += static_cast<char16_t>(c);
        return text;
    }
    void AlignTo4() { Take((4 - m_at % 4) % 4); }

private:
    Bytes m_bytes;
    const char* m_what;
    size_t m_at = 0;
};

}  // namespace qx

#endif
