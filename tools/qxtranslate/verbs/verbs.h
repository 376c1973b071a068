// What the verbs do once the command line is read. Each answers the exit code, and throws BadInput
// for what it cannot work with.
#ifndef QXTRANSLATE_VERBS_VERBS_H
#define QXTRANSLATE_VERBS_VERBS_H

#include "tools/qxtranslate/run/program.h"
#include "tools/qxtranslate/verbs/table.h"

#include <string>
#include <vector>

namespace qx {

enum ExitCode : int { kDone = 0, kFindings = 1, kFailure = 2 };

struct HarvestOptions {
    std::vector<std::string> files;
    std::string language;
    std::string pair;
    std::string output;
};
int RunHarvest(const HarvestOptions& options);

struct AuditOptions {
    std::vector<std::string> files;
    Format format = Format::Text;
    std::string output;
};
int RunAudit(const AuditOptions& options);

struct BuildOptions {
    std::string po;
    unsigned codePage = 0;
    std::string output;
};
int RunBuild(const BuildOptions& options);

struct ImportOptions {
    std::string dictionary;
    unsigned codePage = 0;
    std::string output;
};
int RunImport(const ImportOptions& options);

struct ExportOptions {
    std::string po;
    Format format = Format::Csv;
    std::string output;
};
int RunExport(const ExportOptions& options);

struct CheckOptions {
    std::string po;
    std::string geometry;
    unsigned codePage = 0;  // none
    Format format = Format::Text;
    std::string output;
};
int RunCheck(const CheckOptions& options);

struct StatusOptions {
    std::string po;
    std::string harvest;
    std::string record;
    double failUnder = 0;  // per cent
    Format format = Format::Text;
    std::string output;
};
int RunStatus(const StatusOptions& options);

struct MergeOptions {
    std::string old;
    std::string fresh;
    std::string output;
};
int RunMerge(const MergeOptions& options);

struct PseudoOptions {
    std::string harvest;
    unsigned codePage = 0;
    unsigned longer = 30;  // per cent
    std::string output;
};
int RunPseudo(const PseudoOptions& options);

}  // namespace qx

#endif
