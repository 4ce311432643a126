// The commands that work on descriptions of PCs as files.

#include <algorithm>

#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/descriptions/comparison.h"
#include "tools/kestova/descriptions/validation.h"
#include "tools/kestova/process/confinement.h"

namespace {

// Anybody can have made the files, and reading them is all that is done.
void ConfineToReading(const CommandLine& line) {
    ConfineTo({.operations = line.arguments.size()});
}

}  // namespace

namespace commands {

int Validate(const CommandLine& line) {
    ConfineToReading(line);
    std::vector<ValidationReport> reports;
    for (const std::string& file : line.arguments)
        reports.push_back(::Validate(file));
    Show(line, reports);
    return std::ranges::all_of(reports, &ValidationReport::IsValid) ? Done : UnreadablePcStatus;
}

int Compare(const CommandLine& line) {
    ConfineToReading(line);
    const ComparisonReport report =
        ComparePcs(line.arguments[0], line.arguments[1], line.seen ? Compared::Seen : Compared::Whole);
    Show(line, report);
    return report.differences.empty() ? Done : Failure;
}

}  // namespace commands
