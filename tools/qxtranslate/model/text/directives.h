// The places for names and numbers in a text: "%s", "%d" and the like, which keep their order, and
// "%1", "%2!s!", which may move.
#ifndef QXTRANSLATE_MODEL_TEXT_DIRECTIVES_H
#define QXTRANSLATE_MODEL_TEXT_DIRECTIVES_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qx {

struct Directives {
    std::vector<std::string> ordered;          // each without flags and widths: "%ls"
    std::map<unsigned, std::string> numbered;  // the number and the format between the marks
};

// Where directives of either kind may stand, as [begin, end) of the bytes, also "%%" and line
// breaks; spans may cover each other.
struct DirectiveSpan {
    size_t begin, end;
};
std::vector<DirectiveSpan> FindDirectives(std::string_view text);

// What is wrong with the translation's directives; empty when nothing is.
std::string CompareDirectives(std::string_view source, std::string_view target);

}  // namespace qx

#endif
