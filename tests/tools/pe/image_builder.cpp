#include "tests/tools/pe/image_builder.h"

#include <map>

ByteWriter& ByteWriter::Byte(unsigned value) {
    bytes.push_back(static_cast<uint8_t>(value));
    return *this;
}
ByteWriter& ByteWriter::Word(unsigned value) {
    return Byte(value & 0xFF).Byte(value >> 8 & 0xFF);
}
ByteWriter& ByteWriter::Long(uint32_t value) {
    return Word(value & 0xFFFF).Word(value >> 16);
}
ByteWriter& ByteWriter::Text(const std::u16string& text) {
    for (char16_t c : text) Word(c);
    return Word(0);
}
ByteWriter& ByteWriter::Counted(const std::u16string& text) {
    Word(static_cast<unsigned>(text.size()));
    for (char16_t c : text) Word(c);
    return *this;
}
ByteWriter& ByteWriter::Append(const std::vector<uint8_t>& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return *this;
}
ByteWriter& ByteWriter::AlignTo4() {
    while (bytes.size() % 4) Byte(0);
    return *this;
}
void ByteWriter::PutLong(size_t at, uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(value >> 8 * i);
}

namespace {

constexpr uint32_t kSection = 0x1000;  // where the one section is loaded
constexpr uint32_t kHeaders = 0x400;   // where it lies in the file
constexpr uint32_t kHigh = 0x80000000;

using Name = std::pair<std::u16string, unsigned>;
using Languages = std::map<unsigned, const std::vector<uint8_t>*>;
using Tree = std::map<unsigned, std::map<Name, Languages>>;

uint32_t Here(const ByteWriter& out) {
    return static_cast<uint32_t>(out.bytes.size());
}

// A table with `count` empty entries; answers where they begin.
size_t BeginTable(ByteWriter& out, size_t count) {
    out.Long(0).Long(0).Long(0).Word(0).Word(static_cast<unsigned>(count));
    size_t entries = out.bytes.size();
    for (size_t i = 0; i < count; ++i) out.Long(0).Long(0);
    return entries;
}

void BuildResources(ByteWriter& section, const std::vector<BuiltResource>& resources) {
    Tree tree;
    for (auto& r : resources) tree[r.type][{r.name, r.number}][r.language] = &r.data;
    ByteWriter out;
    size_t typeEntry = BeginTable(out, tree.size());
    for (auto& [type, names] : tree) {
        out.PutLong(typeEntry, type);
        out.PutLong(typeEntry + 4, Here(out) | kHigh);
        typeEntry += 8;
        size_t nameEntry = BeginTable(out, names.size());
        for (auto& [name, languages] : names) {
            uint32_t nameField = name.second;
            if (!name.first.empty()) {
                nameField = Here(out) | kHigh;
                out.Counted(name.first).AlignTo4();
            }
            out.PutLong(nameEntry, nameField);
            out.PutLong(nameEntry + 4, Here(out) | kHigh);
            nameEntry += 8;
            size_t languageEntry = BeginTable(out, languages.size());
            for (auto& [language, data] : languages) {
                out.PutLong(languageEntry, language);
                out.PutLong(languageEntry + 4, Here(out));
                languageEntry += 8;
                uint32_t base = kSection + Here(section);
                out.Long(base + Here(out) + 16).Long(static_cast<uint32_t>(data->size()));
                out.Long(0).Long(0).Append(*data).AlignTo4();
            }
        }
    }
    section.Append(out.bytes);
}

// The slots of one library, by address.
uint32_t BuildSlots(ByteWriter& section, const BuiltImport& import, bool is64) {
    std::vector<uint32_t> names;
    for (auto& function : import.functions) {
        names.push_back(kSection + Here(section));
        section.Word(0);
        for (char c : function) section.Byte(static_cast<unsigned char>(c));
        section.Byte(0).AlignTo4();
    }
    uint32_t slots = kSection + Here(section);
    for (size_t i = 0; i <= names.size(); ++i) {
        bool isOrdinal = i < names.size() && import.functions[i][0] == '#';
        uint32_t low = i == names.size() ? 0
                       : isOrdinal
                           ? static_cast<uint32_t>(std::stoul(import.functions[i].substr(1)))
                           : names[i];
        section.Long(low | (isOrdinal && !is64 ? kHigh : 0));
        if (is64) section.Long(isOrdinal ? kHigh : 0);
    }
    return slots;
}

uint32_t BuildImports(ByteWriter& section, const BuiltImage& image, bool isDelayed) {
    ByteWriter table;
    for (auto& import : image.imports) {
        if (import.isDelayed != isDelayed) continue;
        uint32_t name = kSection + Here(section);
        for (char c : import.library) section.Byte(static_cast<unsigned char>(c));
        section.Byte(0).AlignTo4();
        uint32_t slots = BuildSlots(section, import, image.is64);
        if (isDelayed) {
            table.Long(1).Long(name).Long(0).Long(0).Long(slots).Long(0).Long(0).Long(0);
        } else {
            table.Long(slots).Long(0).Long(0).Long(name).Long(slots);
        }
    }
    if (table.bytes.empty()) return 0;
    for (int i = 0; i < 8; ++i) table.Long(0);
    uint32_t at = kSection + Here(section);
    section.Append(table.bytes);
    return at;
}

}  // namespace

std::vector<uint8_t> BuildImage(const BuiltImage& image) {
    ByteWriter section;
    uint32_t resources = 0;
    if (!image.resources.empty()) {
        resources = kSection;
        BuildResources(section, image.resources);
    }
    uint32_t imports = BuildImports(section, image, false);
    uint32_t delayed = BuildImports(section, image, true);
    for (char c : image.data) section.Byte(static_cast<unsigned char>(c));
    section.AlignTo4();

    ByteWriter out;
    out.Word(0x5A4D);
    while (out.bytes.size() < 0x3C) out.Byte(0);
    out.Long(0x40).Long(0x4550);
    out.Word(image.is64 ? 0x8664 : 0x14C).Word(1).Long(0).Long(0).Long(0);
    out.Word(image.is64 ? 240 : 224).Word(0x2022);
    size_t optional = out.bytes.size();
    out.Word(image.is64 ? 0x20B : 0x10B);
    while (out.bytes.size() < optional + 60) out.Byte(0);
    out.Long(kHeaders);
    while (out.bytes.size() < optional + (image.is64 ? 108 : 92)) out.Byte(0);
    out.Long(16);
    size_t directories = out.bytes.size();
    for (int i = 0; i < 32; ++i) out.Long(0);
    out.PutLong(directories + 8, imports);
    out.PutLong(directories + 16, resources);
    out.PutLong(directories + 13 * 8, delayed);
    for (char c : std::string(".rsrc\0\0\0", 8)) out.Byte(static_cast<unsigned char>(c));
    auto size = Here(section);
    out.Long(size).Long(kSection).Long(size).Long(kHeaders).Long(0).Long(0).Long(0).Long(0);
    while (out.bytes.size() < kHeaders) out.Byte(0);
    out.Append(section.bytes);
    return out.bytes;
}

namespace {

void AppendItems(ByteWriter& out, const std::vector<BuiltItem>& items) {
    for (size_t i = 0; i < items.size(); ++i) {
        unsigned last = i + 1 == items.size() ? 0x80 : 0;
        if (items[i].items.empty()) {
            out.Word(last).Word(items[i].id).Text(items[i].text);
        } else {
            out.Word(last | 0x10).Text(items[i].text);
            AppendItems(out, items[i].items);
        }
    }
}

void AppendExtendedItems(ByteWriter& out, const std::vector<BuiltItem>& items) {
    for (size_t i = 0; i < items.size(); ++i) {
        unsigned last = i + 1 == items.size() ? 0x80 : 0;
        bool isPopup = !items[i].items.empty();
        out.AlignTo4().Long(0).Long(0).Long(items[i].id).Word(last | (isPopup ? 1 : 0));
        out.Text(items[i].text);
        if (!isPopup) continue;
        out.AlignTo4().Long(0);
        AppendExtendedItems(out, items[i].items);
    }
}

void AppendField(ByteWriter& out, unsigned atom, const std::u16string& name) {
    if (name.empty()) {
        out.Word(0xFFFF).Word(atom);
    } else {
        out.Text(name);
    }
}

}  // namespace

std::vector<uint8_t> BuildMenu(const std::vector<BuiltItem>& items) {
    ByteWriter out;
    out.Word(0).Word(0);
    AppendItems(out, items);
    return out.bytes;
}

std::vector<uint8_t> BuildExtendedMenu(const std::vector<BuiltItem>& items) {
    ByteWriter out;
    out.Word(1).Word(4).Long(0);
    AppendExtendedItems(out, items);
    return out.bytes;
}

std::vector<uint8_t> BuildDialog(const std::u16string& caption,
                                 const std::vector<BuiltControl>& controls) {
    ByteWriter out;
    out.Long(0x40).Long(0).Word(static_cast<unsigned>(controls.size()));
    out.Word(0).Word(0).Word(200).Word(100);
    out.Word(0).Word(0).Text(caption).Word(8).Text(u"Tahoma");
    for (auto& control : controls) {
        out.AlignTo4().Long(0).Long(0).Word(0).Word(0).Word(control.width).Word(control.height);
        out.Word(control.id);
        AppendField(out, control.atom, control.className);
        out.Text(control.title).Word(0);
    }
    return out.bytes;
}

std::vector<uint8_t> BuildExtendedDialog(const std::u16string& caption,
                                         const std::vector<BuiltControl>& controls) {
    ByteWriter out;
    out.Word(1).Word(0xFFFF).Long(0).Long(0).Long(0x40);
    out.Word(static_cast<unsigned>(controls.size())).Word(0).Word(0).Word(200).Word(100);
    out.Word(0).Word(0).Text(caption).Word(8).Word(400).Word(0).Text(u"Tahoma");
    for (auto& control : controls) {
        out.AlignTo4().Long(0).Long(0).Long(0).Word(0).Word(0);
        out.Word(control.width).Word(control.height).Long(control.id);
        AppendField(out, control.atom, control.className);
        out.Text(control.title).Word(0);
    }
    return out.bytes;
}

std::vector<uint8_t> BuildStrings(const std::vector<std::u16string>& strings) {
    ByteWriter out;
    for (size_t i = 0; i < 16; ++i) out.Counted(i < strings.size() ? strings[i] : u"");
    return out.bytes;
}
