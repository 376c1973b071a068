#include "tools/qxtranslate/model/pe/resources.h"

#include <algorithm>

namespace qx {

namespace {

constexpr uint32_t kHighBit = 0x80000000;  // of a name: a text; of an offset: a further table
constexpr const char* kTree = "the resource tree";

class TreeReader {
public:
    TreeReader(const PeImage& image, Bytes tree) : m_image(image), m_tree(tree) {}

    std::vector<Resource> Read() {
        EachEntry(0, [&](const ResourceName& type, uint32_t names) {
            EachEntry(Table(names), [&](const ResourceName& name, uint32_t languages) {
                EachEntry(Table(languages), [&](const ResourceName& language, uint32_t leaf) {
                    if (leaf & kHighBit) throw BadInput("the resource tree is too deep");
                    auto number = static_cast<uint16_t>(language.number);
                    m_resources.push_back({type, name, number, Data(leaf)});
                });
            });
        });
        return std::move(m_resources);
    }

private:
    static uint32_t Table(uint32_t offset) {
        if (!(offset & kHighBit)) throw BadInput("the resource tree is too flat");
        return offset & ~kHighBit;
    }

    template <class Visit>
    void EachEntry(uint32_t table, Visit visit) {
        unsigned count = WordAt(m_tree, table + uint64_t(12), kTree) +
                         WordAt(m_tree, table + uint64_t(14), kTree);
        for (unsigned i = 0; i < count; ++i) {
            // In a sound tree no entry is read twice.
            if (++m_visited > m_tree.size() / 8) throw BadInput("the resource tree loops");
            uint64_t at = table + uint64_t(16) + 8 * i;
            visit(Name(LongAt(m_tree, at, kTree)), LongAt(m_tree, at + 4, kTree));
        }
    }

    ResourceName Name(uint32_t name) const {
        if (!(name & kHighBit)) return {name, {}};
        uint64_t at = name & ~kHighBit;
        ByteReader reader(Part(m_tree, at + 2, 2 * size_t(WordAt(m_tree, at, kTree)), kTree),
                          kTree);
        ResourceName result;
        while (reader.Left()) result.text += static_cast<char16_t>(reader.Word());
        return result;
    }

    Bytes Data(uint32_t leaf) const {
        uint32_t address = LongAt(m_tree, leaf, kTree);
        uint32_t size = LongAt(m_tree, leaf + uint64_t(4), kTree);
        if (!size) return {};
        return Part(m_image.From(address, "a resource"), 0, size, "a resource");
    }

    const PeImage& m_image;
    Bytes m_tree;
    size_t m_visited = 0;
    std::vector<Resource> m_resources;
};

}  // namespace

std::vector<Resource> ReadResources(const PeImage& image) {
    PeImage::Directory directory = image.Find(PeDirectory::Resource);
    if (!directory.address) return {};
    return TreeReader(image, image.From(directory.address, kTree)).Read();
}

const Resource* ChooseLanguage(const std::vector<const Resource*>& candidates, uint16_t language) {
    auto find = [&](auto matches) -> const Resource* {
        auto found = std::find_if(candidates.begin(), candidates.end(),
                                  [&](const Resource* r) { return matches(r->language); });
        return found == candidates.end() ? nullptr : *found;
    };
    uint16_t primary = PrimaryLanguage(language);
    for (uint16_t wanted : {language, primary, uint16_t(0)}) {
        if (auto found = find([=](uint16_t l) { return l == wanted; })) return found;
    }
    return find([=](uint16_t l) { return PrimaryLanguage(l) == primary; });
}

}  // namespace qx
