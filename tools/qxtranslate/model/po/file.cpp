#include "tools/qxtranslate/model/po/file.h"

#include <algorithm>

namespace qx {

bool PoEntry::IsFuzzy() const {
    return std::find(flags.begin(), flags.end(), "fuzzy") != flags.end();
}

void PoEntry::SetFuzzy() {
    if (!IsFuzzy()) flags.insert(flags.begin(), "fuzzy");
}

bool PoEntry::IsLeftAsItIs() const {
    return std::find(comments.begin(), comments.end(), kLeftAsItIs) != comments.end();
}

std::string PoFile::Field(std::string_view name) const {
    for (auto& [field, value] : header) {
        if (field == name) return value;
    }
    return {};
}

void PoFile::SetField(std::string_view name, std::string_view value) {
    for (auto& [field, old] : header) {
        if (field != name) continue;
        old = value;
        return;
    }
    header.emplace_back(name, value);
}

}  // namespace qx
