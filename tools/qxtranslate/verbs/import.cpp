#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

namespace qx {

int RunImport(const ImportOptions& options) {
    auto page = OpenCodePage(options.codePage);
    RequireApart(options.output, {options.dictionary});
    PoFile po = ParseText(options.dictionary, [&](std::string_view text) {
        Dictionary dictionary = ReadDictionary(text, *page);
        if (dictionary.entries.empty() && !text.empty())
            throw BadInput("is no dictionary: no two of its lines are a text in double quotes");
        return Decompile(dictionary, *page);
    });
    WriteResult(options.output, WritePo(po));
    return kDone;
}

}  // namespace qx
