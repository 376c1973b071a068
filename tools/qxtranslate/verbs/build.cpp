#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cstdio>

namespace qx {

int RunBuild(const BuildOptions& options) {
    auto page = OpenCodePage(options.codePage);
    RequireApart(options.output, {options.po});
    Compiled compiled =
        ParseText(options.po, [&](std::string_view text) { return Compile(ReadPo(text), *page); });
    for (const LeftOut& entry : compiled.leftOut) {
        std::fprintf(stderr, "%s: line %u: left out: %s\n", options.po.c_str(), entry.line,
                     entry.why.c_str());
    }
    if (compiled.dictionary.entries.empty())
        std::fprintf(stderr, "%s: nothing in it is translated, and the dictionary is empty\n",
                     options.po.c_str());
    WriteResult(options.output, WriteDictionary(compiled.dictionary));
    return kDone;
}

}  // namespace qx
