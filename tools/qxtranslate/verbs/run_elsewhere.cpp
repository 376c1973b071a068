// The verb that needs Windows, as it is on other systems.
#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/verbs/verbs.h"

namespace qx {

void DefineRun(CLI::App& app, Run& run) {
    CLI::App* verb = app.add_subcommand(
        "run", "Starts an unmodified program in another language (qxtranslate.exe only)");
    verb->prefix_command();
    verb->callback([&run] {
        run = []() -> int {
            throw BadInput(
                "run starts Windows programs, and only qxtranslate.exe does that: on "
                "Windows, or under Wine");
        };
    });
}

}  // namespace qx
