// The commands that work on descriptions of PCs.

#include <algorithm>

#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/conformance/asked_operations.h"
#include "tools/kestova/conformance/conformance_text.h"
#include "tools/kestova/descriptions/comparison.h"
#include "tools/kestova/descriptions/validation.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/confinement.h"

namespace {

// Anybody can have made the files, and reading them is all that is done.
void ConfineToReading(const CommandLine& line) {
    ConfineTo({.operations = line.arguments.size()});
}

// The PC that the options choose.
PcAnswers AskHere(const CommandLine& line) {
    const std::unique_ptr<OpenedPc> pc = OpenPc(line.choice, Access::Ask);
    EndOpening();
    ConfineTo({.imageBytes = pc->Inputs().imageBytes, .operations = 2 * AskedOperations().size()});
    ShowNotes(line, pc->Notes());
    return AskPc(*pc);
}

// With its trace, which shows what the operations call.
PcAnswers AskEmulated(const CommandLine& line) {
    PcChoice choice;
    choice.pc = line.arguments[0];
    choice.trace = true;
    const std::unique_ptr<OpenedPc> pc = OpenPc(choice, Access::Ask);
    ShowNotes(line, pc->Notes());
    return AskPc(*pc);
}

std::string NameOf(const PcChoice& choice) {
    if (!choice.images.empty()) return Joined(choice.images, " ");
    return choice.pc.empty() ? "this PC" : choice.pc;
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
    const ComparisonReport report = ComparePcs(line.arguments[0], line.arguments[1]);
    Show(line, report);
    return report.differences.empty() ? Done : Failure;
}

int Conform(const CommandLine& line) {
    const ExpectedDifferences expected =
        line.expect.empty() ? ExpectedDifferences() : ReadExpectedDifferences(line.expect);
    const PcAnswers here = AskHere(line);
    ConformanceReport report = CompareAnswers(here, AskEmulated(line));
    report.here = NameOf(line.choice);
    report.emulated = line.arguments[0];
    NoteExpected(expected, report);
    ShowText(line, line.json ? AsJson(report) : ConformanceText(report, StandardOutput()));
    ShowNotes(line, report.unmet);
    return report.Unexpected() == 0 ? Done : Failure;
}

}  // namespace commands
