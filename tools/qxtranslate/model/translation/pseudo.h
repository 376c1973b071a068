// A pseudo-language: every text in brackets, longer, and in letters of a code page that are still
// read as the English ones. What shows on the screen without brackets comes from no dictionary.
#ifndef QXTRANSLATE_MODEL_TRANSLATION_PSEUDO_H
#define QXTRANSLATE_MODEL_TRANSLATION_PSEUDO_H

#include "tools/qxtranslate/model/po/file.h"
#include "tools/qxtranslate/model/text/code_page.h"

namespace qx {

class PseudoLanguage {
public:
    // `longer` is per cent of the text's length.
    PseudoLanguage(const CodePage& page, unsigned longer);

    // Directives, access key, the keys behind a tab, file patterns, dots, colon and blanks at the
    // ends stay as they are.
    std::string Translate(std::string_view text) const;
    // Every text of a file.
    PoFile Translate(const PoFile& po) const;

private:
    std::string Letters(std::string_view text) const;

    std::string m_letters[128];  // what stands for each
    unsigned m_longer;
};

}  // namespace qx

#endif
