#include "tools/qxtranslate/run/program.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <memory>

namespace qx {

namespace {

// An option that may be given again and again, with one value each time.
template <class Value>
void AddList(CLI::App& verb, const char* name, std::vector<Value>& values, const char* type,
             const char* description) {
    verb.add_option(name, values, description)
        ->type_name(type)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

}  // namespace

void DefineRun(CLI::App& app, Run& run) {
    auto options = std::make_shared<RunOptions>();
    CLI::App* verb = app.add_subcommand("run", "Starts an unmodified program in another language");
    AddList(*verb, "--dictionary", options->dictionaries, "FILE",
            "Dictionary; without one nothing is translated");
    AddList(*verb, "--module", options->modules, "NAME",
            "Translate this library too; the program and those of its folder are anyway");
    verb->add_option("--record", options->record, "Write every look-up to this file")
        ->type_name("FILE");
    verb->add_option("--dump", options->dump, "Write the texts of the live windows to this file")
        ->type_name("FILE");
    verb->add_option("--after", options->after, "When commands, dump and close come (3)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 3600.0));
    AddList(*verb, "--command", options->commands, "ID",
            "Number of a menu command to send before the dump");
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
