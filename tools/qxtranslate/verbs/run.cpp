#include "tools/qxtranslate/run/program.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <memory>

namespace qx {

void DefineRun(CLI::App& app, Run& run) {
    auto options = std::make_shared<RunOptions>();
    CLI::App* verb = app.add_subcommand("run", "Starts an unmodified program in another language");
    verb->add_option("--dictionary", options->dictionaries,
                     "Dictionary; without one nothing is translated")
        ->type_name("FILE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb->add_option("--module", options->modules,
                     "Translate this library too; the program and those of its folder are anyway")
        ->type_name("NAME")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb->add_option("--record", options->record, "Write every look-up to this file")
        ->type_name("FILE");
    verb->add_option("--dump", options->dump, "Write the texts of the live windows to this file")
        ->type_name("FILE");
    verb->add_option("--after", options->after, "When commands, dump and close come (3)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 3600.0));
    verb->add_option("--command", options->commands,
                     "Number of a menu command to send before the dump")
        ->type_name("ID")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb->add_flag("--close", options->closes, "Close the program then");
    verb->add_flag("--wide-boxes", options->wideBoxes,
                   "Translate the message boxes of the wide functions too");
    verb->add_option("PROGRAM", options->program, "The program and its arguments, behind --")
        ->required();
    verb->callback([options, &run] {
        run = [options]() -> int {
            RunProgram(*options);
            return kDone;
        };
    });
}

}  // namespace qx
