// The marks of interface texts that a translation keeps: the access key, the keys behind a tab, the
// dots and colons at the end.
#ifndef QXTRANSLATE_MODEL_TEXT_TEXT_MARKS_H
#define QXTRANSLATE_MODEL_TEXT_TEXT_MARKS_H

#include <string>
#include <string_view>

namespace qx {

// The letter behind the last single "&", in lower case if it is ASCII; 0 without one. "&&" is a
// sign.
char32_t AccessKey(std::string_view text);
// Without the "&" of an access key, and without one in brackets behind the text, "(&F)".
std::string WithoutAccessKey(std::string_view text);

// What stands before the tab, and the tab with what is behind it.
std::string_view BeforeTab(std::string_view text);
std::string_view FromTab(std::string_view text);

bool EndsWithDots(std::string_view text);
bool EndsWithColon(std::string_view text);
size_t LeadingBlanks(std::string_view text);
size_t TrailingBlanks(std::string_view text);

// The text as one and the same for all that differ in access key, case, dots, colon, keys and
// blanks at the ends.
std::string Bare(std::string_view text);

}  // namespace qx

#endif
