// From a PO file to a dictionary and back.
#ifndef QXTRANSLATE_MODEL_DICTIONARY_COMPILE_H
#define QXTRANSLATE_MODEL_DICTIONARY_COMPILE_H

#include "tools/qxtranslate/model/dictionary/text.h"
#include "tools/qxtranslate/model/po/file.h"

namespace qx {

struct LeftOut {
    unsigned line;  // of the PO file
    std::string source;
    std::string why;
};

struct Compiled {
    Dictionary dictionary;
    std::vector<LeftOut> leftOut;
};

// Whether an entry goes into a dictionary: it is translated, or left as it is on purpose, and
// neither fuzzy nor obsolete.
bool IsForDictionary(const PoEntry& entry);

// Every key under which the program may look up the entry's text. A text of a dialog goes in as
// bytes of U+0000 to U+00FF, any other in the code page; the name of a resource may have reached
// the program's look-up as its first letter only.
std::vector<std::string> KeysOf(const PoEntry& entry, const CodePage& page);

// Each entry that no dictionary can hold is left out with the reason.
Compiled Compile(const PoFile& po, const CodePage& page);

// Throws BadInput, with the line's number, for bytes that are no text of the code page.
PoFile Decompile(const Dictionary& dictionary, const CodePage& page);

// The dialog font in the header of a PO file.
std::optional<DialogFont> FontOf(const PoFile& po);
void SetFont(PoFile& po, const DialogFont& font);

// The header of a new file.
void BeginHeader(PoFile& po, std::string_view program);

}  // namespace qx

#endif
