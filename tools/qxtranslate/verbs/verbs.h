// The verbs of the command line. Each defines its options, and sets `run` when it is chosen.
#ifndef QXTRANSLATE_VERBS_VERBS_H
#define QXTRANSLATE_VERBS_VERBS_H

#include "tools/qxtranslate/verbs/table.h"

#include <CLI/CLI.hpp>

#include <functional>

namespace qx {

// The exit code.
using Run = std::function<int()>;
enum ExitCode : int { kDone = 0, kFindings = 1, kFailure = 2 };

void DefineAudit(CLI::App& app, Run& run);
void DefineBuild(CLI::App& app, Run& run);
void DefineCheck(CLI::App& app, Run& run);
void DefineExport(CLI::App& app, Run& run);
void DefineHarvest(CLI::App& app, Run& run);
void DefineImport(CLI::App& app, Run& run);
void DefineMerge(CLI::App& app, Run& run);
void DefinePseudo(CLI::App& app, Run& run);
void DefineRun(CLI::App& app, Run& run);
void DefineStatus(CLI::App& app, Run& run);

// Options that several verbs have.
void AddFormat(CLI::App& verb, Format& format);
void AddOutput(CLI::App& verb, std::string& path);
void AddCodePage(CLI::App& verb, unsigned& number, bool isRequired);

}  // namespace qx

#endif
