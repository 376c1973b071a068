#include "tools/qxtranslate/model/translation/merge.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cstdio>

namespace qx {

int RunMerge(const MergeOptions& options) {
    RequireApart(options.output, {options.fresh});
    MergeCounts counts;
    PoFile merged =
        Merge(ParseText(options.old, ReadPo), ParseText(options.fresh, ReadPo), &counts);
    WriteResult(options.output, WritePo(merged));
    if (IsErrorTerminal()) {
        std::fprintf(stderr, "%u the same, %u suggested (fuzzy), %u missing, %u obsolete\n",
                     counts.same, counts.suggested, counts.missing, counts.obsolete);
    }
    return kDone;
}

}  // namespace qx
