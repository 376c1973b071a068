// Small program files for tests, built field by field from the published layout.
#ifndef TESTS_TOOLS_PE_IMAGE_BUILDER_H
#define TESTS_TOOLS_PE_IMAGE_BUILDER_H

#include <cstdint>
#include <string>
#include <vector>

class ByteWriter {
public:
    ByteWriter& Byte(unsigned value);
    ByteWriter& Word(unsigned value);
    ByteWriter& Long(uint32_t value);
    ByteWriter& Text(const std::u16string& text);     // with its terminator
    ByteWriter& Counted(const std::u16string& text);  // behind its length
    ByteWriter& Append(const std::vector<uint8_t>& more);
    ByteWriter& AlignTo4();
    void PutLong(size_t at, uint32_t value);

    std::vector<uint8_t> bytes;
};

struct BuiltResource {
    unsigned type;
    unsigned number;
    std::u16string name;  // in place of the number, if there is one
    unsigned language;
    std::vector<uint8_t> data;
};

struct BuiltImport {
    std::string library;
    std::vector<std::string> functions;  // "#5" is the ordinal 5
    bool isDelayed = false;
};

struct BuiltImage {
    std::vector<BuiltResource> resources;
    std::vector<BuiltImport> imports;
    std::string data;  // further bytes of the image
    bool is64 = true;
};

std::vector<uint8_t> BuildImage(const BuiltImage& image);

// Templates.
struct BuiltItem {
    std::u16string text;
    unsigned id = 0;
    std::vector<BuiltItem> items = {};  // a popup's
};
std::vector<uint8_t> BuildMenu(const std::vector<BuiltItem>& items);
std::vector<uint8_t> BuildExtendedMenu(const std::vector<BuiltItem>& items);

struct BuiltControl {
    unsigned atom = 0x80;
    std::u16string className = {};  // in place of the atom
    std::u16string title = {};
    unsigned id = 0;
    unsigned width = 40;
    unsigned height = 8;
};
std::vector<uint8_t> BuildDialog(const std::u16string& caption,
                                 const std::vector<BuiltControl>& controls);
std::vector<uint8_t> BuildExtendedDialog(const std::u16string& caption,
                                         const std::vector<BuiltControl>& controls);
// At most 16 strings.
std::vector<uint8_t> BuildStrings(const std::vector<std::u16string>& strings);

#endif
