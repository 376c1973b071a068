#include "tools/qxtranslate/model/translation/record.h"

#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>

namespace qx {

std::vector<LookUp> ReadRecord(std::string_view text) {
    std::vector<LookUp> lookUps;
    for (unsigned number = 1; !text.empty(); ++number) {
        size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        std::vector<std::string> cells;
        for (size_t at = 0; at <= line.size();) {
            size_t tab = std::min(line.find('\t', at), line.size());
            cells.push_back(UnescapeLine(line.substr(at, tab - at)));
            at = tab + 1;
        }
        if (cells.size() != 6) {
            throw BadInput("line " + std::to_string(number) + ": a look-up has 6 cells, not " +
                           std::to_string(cells.size()));
        }
        lookUps.push_back({cells[0], cells[1], cells[2], cells[3], cells[4], cells[5]});
    }
    return lookUps;
}

std::string WriteLookUp(const LookUp& l) {
    std::string line;
    for (const std::string* cell :
         {&l.function, &l.module, &l.place, &l.ending, &l.source, &l.target})
        line += EscapeLine(*cell) + "\t";
    line.back() = '\n';
    return line;
}

}  // namespace qx
