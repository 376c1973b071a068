#include "tools/qxtranslate/model/pe_imports.h"

#include <algorithm>
#include <functional>

namespace qx {

namespace {

constexpr const char* kTable = "the import table";

class ImportReader {
public:
    explicit ImportReader(const PeImage& image) : m_image(image) {}

    std::vector<Import> Read() {
        EachDescriptor(PeDirectory::Import, 20, 12, [&](Bytes descriptor) {
            uint32_t names = LongAt(descriptor, 0, kTable);
            uint32_t slots = LongAt(descriptor, 16, kTable);
            Functions(LongAt(descriptor, 12, kTable), names ? names : slots, false);
        });
        EachDescriptor(PeDirectory::DelayImport, 32, 4, [&](Bytes descriptor) {
            // Old files give addresses where others give distances from the image's base.
            bool isDistance = LongAt(descriptor, 0, kTable) & 1;
            auto base = isDistance ? 0 : static_cast<uint32_t>(m_image.ImageBase());
            Functions(LongAt(descriptor, 4, kTable) - base, LongAt(descriptor, 16, kTable) - base,
                      true);
        });
        return std::move(m_imports);
    }

private:
    void EachDescriptor(PeDirectory which, size_t size, size_t nameAt,
                        const std::function<void(Bytes)>& visit) {
        PeImage::Directory directory = m_image.Find(which);
        if (!directory.address) return;
        Bytes table = m_image.From(directory.address, kTable);
        for (uint64_t at = 0;; at += size) {
            Bytes descriptor = Part(table, at, size, kTable);
            if (!LongAt(descriptor, nameAt, kTable)) return;
            visit(descriptor);
        }
    }

    void Functions(uint32_t nameAddress, uint32_t slotAddress, bool isDelayed) {
        std::string library = m_image.TextAt(nameAddress, kTable);
        Bytes slots = m_image.From(slotAddress, kTable);
        size_t size = m_image.Is64Bit() ? 8 : 4;
        for (uint64_t at = 0;; at += size) {
            // Tables that share their slots would be read again and again.
            if (++m_visited > kMaxImports) throw BadInput("the import table loops");
            uint64_t slot =
                size == 8 ? NumberAt<uint64_t>(slots, at, kTable) : LongAt(slots, at, kTable);
            if (!slot) return;
            Import import = {library, {}, 0, isDelayed};
            if (slot >> (8 * size - 1)) {
                import.ordinal = slot & 0xFFFF;
            } else {
                import.function = m_image.TextAt(static_cast<uint32_t>(slot) + 2, kTable);
            }
            m_imports.push_back(import);
        }
    }

    static constexpr size_t kMaxImports = 200000;
    const PeImage& m_image;
    size_t m_visited = 0;
    std::vector<Import> m_imports;
};

}  // namespace

std::vector<Import> ReadImports(const PeImage& image) {
    return ImportReader(image).Read();
}

bool HoldsName(const PeImage& image, const std::string& name) {
    std::boyer_moore_horspool_searcher searcher(name.c_str(), name.c_str() + name.size() + 1);
    for (Bytes section : image.Sections()) {
        if (std::search(section.begin(), section.end(), searcher) != section.end()) return true;
    }
    return false;
}

}  // namespace qx
