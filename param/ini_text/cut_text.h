// Text that is put together in a buffer of a fixed size, which is the limit of its content: what is
// longer is cut at a whole character.
#ifndef QXCORE_PARAM_INI_TEXT_CUT_TEXT_H
#define QXCORE_PARAM_INI_TEXT_CUT_TEXT_H

#include "strings/characters.h"
#include "strings/unit_scan.h"

#include <charconv>
#include <cstring>

namespace qx {

class CutText {
public:
    // Begins with the first `kept` bytes that the buffer holds. REQUIRES: kept < size.
    CutText(char* buffer, size_t size, size_t kept = 0)
        : m_begin(buffer), m_end(buffer + kept), m_limit(buffer + size - 1) {
        *m_end = 0;
    }

    // Nothing is added any more once something was cut.
    void Add(const char* text) { Add(text, ScanLength(text)); }
    void Add(const char* text, size_t size) {
        if (size > Room()) {
            size = m_limit == m_end ? 0 : Characters::OfRuntime().WholeBytes(text, Room());
            m_limit = m_end + size;
        }
        memcpy(m_end, text, size);
        m_end += size;
        *m_end = 0;
    }
    void Add(char c) { Add(&c, 1); }
    // Decimal digits, the first number as it is and each further one behind a comma.
    template <class... More>
    void AddNumbers(long long number, More... more) {
        char digits[24];
        auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        Add(digits, static_cast<size_t>(end - digits));
        if constexpr (sizeof...(more) > 0) {
            Add(',');
            AddNumbers(more...);
        }
    }

    const char* Text() const { return m_begin; }
    size_t Size() const { return static_cast<size_t>(m_end - m_begin); }

private:
    char* m_begin;
    char* m_end;
    char* m_limit;  // where the terminator of the longest text stands

    size_t Room() const { return static_cast<size_t>(m_limit - m_end); }
};

}  // namespace qx

#endif
