// list_resources FILE...: each file's resources, a line each: file, type, name, language, size and
// the FNV-1a hash of the bytes, for comparison with what others read.
#include "tools/qxtranslate/model/pe/resources.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

std::string NameOf(const qx::ResourceName& name) {
    return name.IsNumber() ? std::to_string(name.number) : qx::ToUtf8(name.text);
}

uint64_t Hash(qx::Bytes bytes) {
    uint64_t hash = 0xcbf29ce484222325;
    for (uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001b3;
    return hash;
}

}  // namespace

int main(int count, char** words) {
    for (int i = 1; i < count; ++i) {
        std::ifstream in(words[i], std::ios::binary);
        std::vector<uint8_t> file{std::istreambuf_iterator<char>(in), {}};
        qx::PeImage image(file);
        for (const qx::Resource& r : qx::ReadResources(image)) {
            std::printf("%s\t%s\t%s\t%u\t%zu\t%016" PRIx64 "\n", words[i], NameOf(r.type).c_str(),
                        NameOf(r.name).c_str(), r.language, r.data.size(), Hash(r.data));
        }
    }
}
