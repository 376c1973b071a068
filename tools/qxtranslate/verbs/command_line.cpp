#include "tools/qxtranslate/verbs/command_line.h"

#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

namespace qx {

namespace {

using Run = std::function<int()>;

// A verb; when it is chosen, `run` is set to what it does with its options.
template <class Options>
CLI::App* AddVerb(CLI::App& app, Run& run, const char* name, const char* description,
                  std::shared_ptr<Options> options, int (*verb)(const Options&)) {
    return app.add_subcommand(name, description)->callback([&run, options, verb] {
        run = [options, verb] { return verb(*options); };
    });
}

// ---- options that several verbs have

void AddFormat(CLI::App* verb, Format& format) {
    static const std::map<std::string, Format> kFormats = {
        {"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}};
    verb->add_option("--format", format, "Form of the result: text, json or csv")
        ->transform(CLI::CheckedTransformer(kFormats).description(""))
        ->type_name("FORMAT");
}

void AddOutput(CLI::App* verb, std::string& path) {
    verb->add_option("-o,--output", path, "Write the result to this file")->type_name("FILE");
}

CLI::Option* AddCodePage(CLI::App* verb, unsigned& number) {
    return verb->add_option("--codepage", number, "Number of the code page, such as 1252")
        ->type_name("NUMBER");
}

// One that may be given again and again, with one value each time.
template <class Value>
void AddList(CLI::App* verb, const char* name, std::vector<Value>& values, const char* type,
             const char* description) {
    verb->add_option(name, values, description)
        ->type_name(type)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// ---- the verbs

void DefineHarvest(CLI::App& app, Run& run) {
    auto options = std::make_shared<HarvestOptions>();
    CLI::App* verb =
        AddVerb(app, run, "harvest",
                "Every text of the menus, dialogs and string tables of programs, as a PO file",
                options, RunHarvest);
    verb->add_option("FILE", options->files, "Programs and libraries, 32-bit or 64-bit")
        ->required();
    auto language =
        verb->add_option("--language", options->language, "Language of the texts (0x409)")
            ->type_name("NUMBER");
    verb->add_option("--pair", options->pair,
                     "Language of the texts and language of the translations, 0x409,0x407")
        ->type_name("TWO")
        ->excludes(language);
    AddOutput(verb, options->output);
}

void DefineAudit(CLI::App& app, Run& run) {
    auto options = std::make_shared<AuditOptions>();
    CLI::App* verb =
        AddVerb(app, run, "audit",
                "Which of the 24 intercepted functions programs call, and what is out of reach",
                options, RunAudit);
    verb->add_option("FILE", options->files, "Programs and libraries")->required();
    AddFormat(verb, options->format);
    AddOutput(verb, options->output);
}

void DefineBuild(CLI::App& app, Run& run) {
    auto options = std::make_shared<BuildOptions>();
    CLI::App* verb =
        AddVerb(app, run, "build", "From a PO file to a dictionary", options, RunBuild);
    verb->add_option("PO", options->po, "The translations")->required();
    AddCodePage(verb, options->codePage)->required();
    AddOutput(verb, options->output);
}

void DefineImport(CLI::App& app, Run& run) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* verb =
        AddVerb(app, run, "import", "From a dictionary to a PO file", options, RunImport);
    verb->add_option("DICTIONARY", options->dictionary, "The dictionary")->required();
    AddCodePage(verb, options->codePage)->required();
    AddOutput(verb, options->output);
}

void DefineExport(CLI::App& app, Run& run) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* verb =
        AddVerb(app, run, "export", "From a PO file to a table (CSV)", options, RunExport);
    verb->add_option("PO", options->po, "The translations")->required();
    AddFormat(verb, options->format);
    AddOutput(verb, options->output);
}

void DefineCheck(CLI::App& app, Run& run) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* verb =
        AddVerb(app, run, "check", "What is wrong with the translations", options, RunCheck);
    verb->add_option("PO", options->po, "The translations")->required();
    verb->add_option("--geometry", options->geometry,
                     "Check the geometry file of the dictionary too")
        ->type_name("FILE");
    AddCodePage(verb, options->codePage);
    AddFormat(verb, options->format);
    AddOutput(verb, options->output);
}

void DefineStatus(CLI::App& app, Run& run) {
    auto options = std::make_shared<StatusOptions>();
    CLI::App* verb = AddVerb(app, run, "status", "How far a translation has come, text by text",
                             options, RunStatus);
    verb->add_option("PO", options->po, "The translations")->required();
    verb->add_option("--harvest", options->harvest, "The harvest of the program as it is now")
        ->type_name("POT");
    verb->add_option("--record", options->record, "What the program looked up while it ran")
        ->type_name("FILE");
    verb->add_option("--fail-under", options->failUnder,
                     "Exit with 1 when less than this share of the texts in reach is done")
        ->type_name("PERCENT")
        ->check(CLI::Range(0.0, 100.0));
    AddFormat(verb, options->format);
    AddOutput(verb, options->output);
}

void DefineMerge(CLI::App& app, Run& run) {
    auto options = std::make_shared<MergeOptions>();
    CLI::App* verb = AddVerb(app, run, "merge",
                             "The old translations for the texts of a new version of the program",
                             options, RunMerge);
    verb->add_option("OLD", options->old, "The translations")->required();
    verb->add_option("NEW", options->fresh, "The harvest of the new version")->required();
    AddOutput(verb, options->output);
}

void DefinePseudo(CLI::App& app, Run& run) {
    auto options = std::make_shared<PseudoOptions>();
    CLI::App* verb =
        AddVerb(app, run, "pseudo",
                "A dictionary of a pseudo-language, which shows what no dictionary reaches",
                options, RunPseudo);
    verb->add_option("POT", options->harvest, "The harvest")->required();
    AddCodePage(verb, options->codePage)->required();
    verb->add_option("--longer", options->longer, "How much longer the texts get, in per cent (30)")
        ->type_name("PERCENT")
        ->check(CLI::Range(0, 400));
    AddOutput(verb, options->output);
}

int RunRun(const RunOptions& options) {
    RunProgram(options);
    return kDone;
}

void DefineRun(CLI::App& app, Run& run) {
    auto options = std::make_shared<RunOptions>();
    CLI::App* verb = AddVerb(app, run, "run", "Starts an unmodified program in another language",
                             options, RunRun);
    AddList(verb, "--dictionary", options->dictionaries, "FILE",
            "Dictionary; without one nothing is translated");
    AddList(verb, "--module", options->modules, "NAME",
            "Translate this library too; the program and those of its folder are anyway");
    verb->add_option("--record", options->record, "Write every look-up to this file")
        ->type_name("FILE");
    verb->add_option("--dump", options->dump, "Write the texts of the live windows to this file")
        ->type_name("FILE");
    verb->add_option("--after", options->after, "When commands, dump and close come (3)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 3600.0));
    AddList(verb, "--command", options->commands, "ID",
            "Number of a menu command to send before the dump");
    verb->add_flag("--close", options->closes, "Close the program then");
    verb->add_flag("--wide-boxes", options->wideBoxes,
                   "Translate the message boxes of the wide functions too");
    verb->add_option("PROGRAM", options->program, "The program and its arguments, behind --")
        ->required();
}

}  // namespace

int RunCommandLine(std::vector<std::string> words) {
    CLI::App app(
        "Finds every text of a Windows program, and shows the program in another language.",
        "qxtranslate");
    app.set_version_flag("--version", "qxtranslate " QXCORE_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // "/c" is a path, or an argument of the program to run
    Run run;
    for (auto define : {DefineHarvest, DefineAudit, DefineBuild, DefineImport, DefineExport,
                        DefineCheck, DefineStatus, DefineMerge, DefinePseudo, DefineRun})
        define(app, run);
    std::reverse(words.begin(), words.end());
    try {
        app.parse(words);
    } catch (const CLI::ParseError& failure) {
        if (failure.get_exit_code() == 0) return app.exit(failure);
        throw BadInput(failure.what());
    }
    return run();
}

}  // namespace qx
