#include "tools/qxtranslate/verbs/table.h"

#include "tools/qxtranslate/model/text/unicode.h"

#include <nlohmann/json.hpp>

namespace qx {

namespace {

std::string CsvCell(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
    std::string quoted = "\"";
    for (char c : cell) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + "\"";
}

std::string CsvLine(const std::vector<std::string>& cells) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) line += (i ? "," : "") + CsvCell(cells[i]);
    return line + "\r\n";
}

std::string TextLine(const std::vector<std::string>& cells) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) line += (i ? "\t" : "") + EscapeLine(cells[i]);
    return line + "\n";
}

std::string Json(const Table& table) {
    auto list = nlohmann::ordered_json::array();
    for (auto& row : table.rows) {
        nlohmann::ordered_json object;
        for (size_t i = 0; i < row.size(); ++i) object[table.columns[i]] = row[i];
        list.push_back(object);
    }
    return list.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string Print(const Table& table, Format format) {
    if (format == Format::Json) return Json(table);
    std::string text = format == Format::Csv ? CsvLine(table.columns) : "";
    for (auto& row : table.rows) text += format == Format::Csv ? CsvLine(row) : TextLine(row);
    return text;
}

}  // namespace qx
