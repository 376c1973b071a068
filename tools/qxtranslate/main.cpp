// qxtranslate: the translator's workbench.
#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace qx {

void AddFormat(CLI::App& verb, Format& format) {
    static const std::map<std::string, Format> kFormats = {
        {"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}};
    verb.add_option("--format", format, "Form of the result: text, json or csv")
        ->transform(CLI::CheckedTransformer(kFormats).description(""))
        ->type_name("FORMAT");
}

void AddOutput(CLI::App& verb, std::string& path) {
    verb.add_option("-o,--output", path, "Write the result to this file")->type_name("FILE");
}

void AddCodePage(CLI::App& verb, unsigned& number, bool isRequired) {
    verb.add_option("--codepage", number, "Number of the code page, such as 1252")
        ->type_name("NUMBER")
        ->required(isRequired);
}

namespace {

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

}  // namespace

}  // namespace qx

int main(int count, char** words) {
    qx::PrepareOutput();
    try {
        return qx::RunCommandLine(qx::CommandLineWords(count, words));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "qxtranslate: %s\n", failure.what());
        return qx::kFailure;
    }
}
