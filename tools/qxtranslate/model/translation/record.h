// A record: what a program looked up while it ran, a line a look-up.
//
// The cells stand between tabs, with "\n", "\t", "\r" and "\\" escaped: the function, the module,
// the place (as the context of a PO entry, or empty), how it ended, the source text, the
// translation. UTF-8.
#ifndef QXTRANSLATE_MODEL_TRANSLATION_RECORD_H
#define QXTRANSLATE_MODEL_TRANSLATION_RECORD_H

#include <string>
#include <string_view>
#include <vector>

namespace qx {

struct LookUp {
    std::string function;
    std::string module;
    std::string place;
    std::string ending;  // "place", "plain", "empty", "miss", or "not looked up: why"
    std::string source;
    std::string target;
};

// Throws BadInput with the line's number.
std::vector<LookUp> ReadRecord(std::string_view text);
std::string WriteLookUp(const LookUp& lookUp);

}  // namespace qx

#endif
