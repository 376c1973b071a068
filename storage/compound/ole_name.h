// A narrow name on its way to the platform, in a wide buffer that needs no allocation.
#ifndef QXCORE_STORAGE_COMPOUND_OLE_NAME_H
#define QXCORE_STORAGE_COMPOUND_OLE_NAME_H

namespace qx {

// What does not fit is cut between two characters, and nothing tells the caller. Each operation
// keeps a static one of its own, so no operation may run twice at a time.
class OleName {
public:
    constexpr OleName() = default;

    // From the process's code page; null counts as empty.
    const wchar_t* Set(const char* narrow);
    // Whether the text may name an element: not empty, and without \ / : and !.
    bool NamesElement() const;
    const wchar_t* Text() const { return m_text; }

private:
    static constexpr int kLength = 512;
    wchar_t m_text[kLength + 1] = {};
};

}  // namespace qx

#endif
