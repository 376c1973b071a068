// Entries of PO files, as tests write them.
#ifndef TESTS_TOOLS_PO_ENTRIES_H
#define TESTS_TOOLS_PO_ENTRIES_H

#include "tools/qxtranslate/model/po/file.h"

inline qx::PoEntry Entry(const std::string& source, const std::string& target,
                         std::vector<std::string> references = {}) {
    qx::PoEntry entry;
    entry.source = source;
    entry.target = target;
    entry.references = std::move(references);
    return entry;
}

inline qx::PoFile PoOf(std::vector<qx::PoEntry> entries) {
    qx::PoFile po;
    po.entries = std::move(entries);
    return po;
}

#endif
