// A program or library file for Windows, 32-bit or 64-bit, as it lies on disk.
#ifndef QXTRANSLATE_MODEL_PE_IMAGE_H
#define QXTRANSLATE_MODEL_PE_IMAGE_H

#include "tools/qxtranslate/model/pe/bytes.h"

#include <vector>

namespace qx {

enum class PeDirectory { Export = 0, Import = 1, Resource = 2, DelayImport = 13 };

class PeImage {
public:
    // Borrows the bytes. Throws BadInput when they are no such file.
    explicit PeImage(Bytes file);

    bool Is64Bit() const { return m_is64; }
    uint16_t Machine() const { return m_machine; }
    uint64_t ImageBase() const { return m_imageBase; }

    struct Directory {
        uint32_t address = 0;
        uint32_t size = 0;
    };
    // All zero when the file has none.
    Directory Find(PeDirectory which) const;

    // The file's bytes from an address of the loaded image to the end of its section.
    Bytes From(uint32_t address, const char* what) const;
    // A text of single bytes up to its terminator.
    std::string TextAt(uint32_t address, const char* what) const;
    // The contents of the sections that hold data, for searches.
    std::vector<Bytes> Sections() const;

private:
    struct Section {
        uint32_t address, size, offset, stored;
    };

    void ReadSections(uint64_t at, unsigned count);

    Bytes m_file;
    bool m_is64 = false;
    uint16_t m_machine = 0;
    uint64_t m_imageBase = 0;
    uint32_t m_headers = 0;
    std::vector<Directory> m_directories;
    std::vector<Section> m_sections;
};

}  // namespace qx

#endif
