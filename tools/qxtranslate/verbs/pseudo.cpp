#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/model/translation/pseudo.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cstdio>

namespace qx {

int RunPseudo(const PseudoOptions& options) {
    auto page = OpenCodePage(options.codePage);
    PseudoLanguage language(*page, options.longer);
    RequireApart(options.output, {options.harvest});
    Compiled compiled = ParseText(options.harvest, [&](std::string_view text) {
        return Compile(language.Translate(ReadPo(text)), *page);
    });
    for (const LeftOut& entry : compiled.leftOut) {
        std::fprintf(stderr, "%s: line %u: left out: %s\n", options.harvest.c_str(), entry.line,
                     entry.why.c_str());
    }
    WriteResult(options.output, WriteDictionary(compiled.dictionary));
    return kDone;
}

}  // namespace qx
