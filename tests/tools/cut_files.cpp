// Cuts files behind every byte, and does with what is left all that the verbs do.
//
//     cut_files [--step N] FILE...    programs, translations (.po) and dictionaries (.wld); with a
//                                     step only behind every Nth byte
#include "tests/tools/uses.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"

#include <cstdio>
#include <cstdlib>

namespace {

FileKind KindOf(const std::string& path) {
    if (path.ends_with(".po")) return FileKind::Translations;
    return path.ends_with(".wld") ? FileKind::Dictionary : FileKind::Program;
}

void Cut(const std::string& path, size_t step) {
    static const auto page = qx::OpenCodePage(1252);
    const std::vector<uint8_t> whole = qx::ReadBytes(path);
    size_t cuts = 0, usable = 0;
    for (size_t size = 0; size <= whole.size(); size += step, ++cuts) {
        // Of exactly that size in memory, so that a sanitizer sees what reaches beyond it.
        std::vector<uint8_t> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        usable += Use(KindOf(path), cut, *page);
    }
    std::printf("%s: cut %zu times, usable %zu times\n", path.c_str(), cuts, usable);
}

}  // namespace

int main(int count, char** words) {
    int first = 1;
    size_t step = 1;
    if (count > 2 && std::string(words[1]) == "--step") {
        step = std::strtoul(words[2], nullptr, 10);
        first = 3;
    }
    if (first >= count || step == 0) return 2;
    for (int i = first; i < count; ++i) Cut(words[i], step);
    return 0;
}
