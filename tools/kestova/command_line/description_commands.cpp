// The commands that work on descriptions of PCs.

#include <algorithm>
#include <iostream>
#include <limits>
#include <optional>
#include <utility>

#include "tools/kestova/arguments/options.h"
#include "tools/kestova/capture/captured_pc.h"
#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/conformance/asked_operations.h"
#include "tools/kestova/conformance/conformance_text.h"
#include "tools/kestova/descriptions/comparison.h"
#include "tools/kestova/descriptions/description_text.h"
#include "tools/kestova/descriptions/generation.h"
#include "tools/kestova/descriptions/validation.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/confinement.h"
#include "tools/kestova/process/interruption.h"

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

// What was found out about the PC that the options choose.
struct AskedPc {
    PcAnswers answers;
    std::string capture;  // its description; empty if another PC was named
};

constexpr int noTrial = -1;

// The number of the disk on which changes are tried.
int TrialOf(const CommandLine& line) {
    if (line.changes.empty()) return noTrial;
    if (!line.choice.images.empty())
        throw WrongUse(
            "--changes: not on disk images; attach a virtual disk to the PC, or name one with --pc");
    return static_cast<int>(ReadNumber("--changes", line.changes, 0, mostDisks - 1));
}

// On the PC that the program runs on, a user at a terminal is asked first.
void AskBeforeTrial(const CommandLine& line, const TrialDisk& disk) {
    if (!line.choice.pc.empty() || line.choice.yes) return;
    const std::string what =
        disk.words + ": active flags, letters and a type are changed, and put back. Go on?";
    if (AskOnTerminal(what) == false) throw Failed("nothing was changed");
}

// The disk, of which nothing is changed yet; nothing without --changes.
std::optional<TrialDisk> FindTrial(Session& session, const CommandLine& line) {
    const int number = TrialOf(line);
    if (number == noTrial) return std::nullopt;
    session.Construct();
    session.Ask(FindOperation("Initialize"), ReadArguments(FindOperation("Initialize"), {"false"}));
    TrialDisk disk = FindTrialDisk(number, session.AskNumber("GetFirstInternalDriveNumber"));
    session.Destroy();
    return disk;
}

// All that is asked of a PC. Its capture is made before anything is tried.
AskedPc AskAll(Session& session, std::optional<TrialDisk> trial, bool captures) {
    AskedPc asked{.answers = AskPc(session), .capture = {}};
    if (captures) asked.capture = DescriptionText(CapturePc().pc);
    if (trial) AskDisk(session, *trial, asked.answers);
    return asked;
}

AskedPc AskHere(const CommandLine& line) {
    TrialOf(line);  // refuses what is no number, before anything is opened
    const std::unique_ptr<OpenedPc> pc = OpenPc(line.choice, Access::Ask);
    EndOpening();
    ConfineTo({.imageBytes = pc->Inputs().imageBytes, .operations = 2 * AskedOperations().size()});
    ShowNotes(line, pc->Notes());
    Session session(*pc, nullptr, false);
    std::optional<TrialDisk> trial = FindTrial(session, line);
    if (trial) {
        AskBeforeTrial(line, *trial);
        HoldInterruption();
    }
    return AskAll(session, std::move(trial), line.arguments.empty());
}

// With its trace, which shows what the operations call.
PcAnswers AskEmulated(const CommandLine& line, const std::string& capture) {
    PcChoice choice;
    choice.captured = capture;
    if (!line.arguments.empty()) choice.pc = line.arguments.front();
    choice.trace = true;
    const std::unique_ptr<OpenedPc> pc = OpenEmulatedPc(choice, Access::Ask);
    ShowNotes(line, pc->Notes());
    Session session(*pc, nullptr, false);
    return AskAll(session, FindTrial(session, line), false).answers;
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

int Conform(const CommandLine& line) {
    const ExpectedDifferences expected =
        line.expect.empty() ? ExpectedDifferences() : ReadExpectedDifferences(line.expect);
    const AskedPc here = AskHere(line);
    ConformanceReport report = CompareAnswers(here.answers, AskEmulated(line, here.capture));
    report.here = NameOf(line.choice);
    report.emulated = line.arguments.empty() ? "its capture" : line.arguments.front();
    NoteExpected(expected, report);
    ShowText(line, line.json ? AsJson(report) : ConformanceText(report, StandardOutput()));
    ShowNotes(line, report.unmet);
    ShowNotes(line, report.left);
    return report.Unexpected() == 0 && report.left.empty() ? Done : Failure;
}

}  // namespace commands
