// The commands that work on descriptions of PCs.

#include <algorithm>
#include <iostream>
#include <limits>

#include "tools/kestova/arguments/options.h"
#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/descriptions/comparison.h"
#include "tools/kestova/descriptions/description_text.h"
#include "tools/kestova/descriptions/generation.h"
#include "tools/kestova/descriptions/validation.h"
#include "tools/kestova/process/confinement.h"

namespace {

// Anybody can have made the files, and reading them is all that is done.
void ConfineToReading(const CommandLine& line) {
    ConfineTo({.operations = line.arguments.size()});
}

GeneratedPcs PcsToGenerate(const CommandLine& line) {
    constexpr uint64_t mostPcs = 999999;
    constexpr uint64_t anySeed = std::numeric_limits<uint64_t>::max();
    GeneratedPcs pcs;
    if (!line.seed.empty()) pcs.seed = ReadNumber("--seed", line.seed, 0, anySeed);
    if (!line.first.empty()) pcs.first = ReadNumber("--first", line.first, 1, mostPcs);
    if (!line.count.empty()) pcs.count = ReadNumber("--count", line.count, 1, mostPcs + 1 - pcs.first);
    return pcs;
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

int Generate(const CommandLine& line) {
    const GeneratedPcs pcs = PcsToGenerate(line);
    if (!line.output.empty() && line.output != "-") {
        WriteGenerated(pcs, line.output, line.overwrite);
        return Done;
    }
    ConfineTo({});
    ShowGenerated(pcs, std::cout);
    return Done;
}

int Compare(const CommandLine& line) {
    ConfineToReading(line);
    const ComparisonReport report =
        ComparePcs(line.arguments[0], line.arguments[1], line.seen ? Compared::Seen : Compared::Whole);
    Show(line, report);
    return report.differences.empty() ? Done : Failure;
}

}  // namespace commands
