// Rows of a result in the form that --format names.
#ifndef QXTRANSLATE_VERBS_TABLE_H
#define QXTRANSLATE_VERBS_TABLE_H

#include <string>
#include <vector>

namespace qx {

enum class Format { Text, Json, Csv };

struct Table {
    std::vector<std::string> columns;
    std::vector<std::vector<std::string>> rows;
};

// JSON: a list of objects. CSV: a line of names, then the rows, CR LF. Text: the rows, with tabs
// between their cells.
std::string Print(const Table& table, Format format);

}  // namespace qx

#endif
