// Asks two PCs the same.

#include <memory>
#include <optional>
#include <utility>

#include "tools/kestova/arguments/options.h"
#include "tools/kestova/capture/captured_pc.h"
#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/output_files.h"
#include "tools/kestova/command_line/page_format.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/conformance/asked_operations.h"
#include "tools/kestova/conformance/conformance_text.h"
#include "tools/kestova/descriptions/description_text.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/picture/conformance_page.h"
#include "tools/kestova/picture/making_time.h"
#include "tools/kestova/process/confinement.h"
#include "tools/kestova/process/interruption.h"

namespace {

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

AskedPc AskHere(const CommandLine& line, OutputFiles& files) {
    TrialOf(line);  // refuses what is no number, before anything is opened
    const std::unique_ptr<OpenedPc> pc = OpenPc(line.choice, Access::Ask);
    files = FindOutputFiles(line, pc->Inputs(), line.expect);
    EndOpening();
    ConfineTo({.saves = files.output.has_value(),
               .imageBytes = pc->Inputs().imageBytes,
               .operations = 2 * AskedOperations().size()});
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

std::string Page(const CommandLine& line, const ConformanceReport& report, const std::string& time) {
    const std::string making =
        "Made by kestova " KESTOVA_VERSION " at " + time + ". " +
        (line.changes.empty() ? "Nothing was changed."
                              : "Changes were tried on disk " + line.changes + " of " + report.here + ".");
    return PageFormatOf(line) == PageFormat::Html ? ConformanceHtml(report, making)
                                                  : ConformanceMarkdown(report, making);
}

}  // namespace

namespace commands {

int Conform(const CommandLine& line) {
    const ExpectedDifferences expected =
        line.expect.empty() ? ExpectedDifferences() : ReadExpectedDifferences(line.expect);
    const bool makesPage = !line.output.empty() || !line.format.empty();
    if (makesPage && line.json)
        throw WrongUse("conform: --json is given with --output or --format, which make a page");
    if (makesPage) PageFormatOf(line);
    const std::string time = makesPage ? MakingTime() : "";
    OutputFiles files;
    const AskedPc here = AskHere(line, files);
    ConformanceReport report = CompareAnswers(here.answers, AskEmulated(line, here.capture));
    report.here = NameOf(line.choice);
    report.emulated = line.arguments.empty() ? "its capture" : line.arguments.front();
    report.notAsked = NotAskedOperations();
    NoteExpected(expected, report);
    if (makesPage) {
        WriteOutput(Page(line, report, time), files);
    } else {
        ShowText(line, line.json ? AsJson(report) : ConformanceText(report, StandardOutput()));
    }
    ShowNotes(line, report.unmet);
    ShowNotes(line, report.left);
    return report.Unexpected() == 0 && report.left.empty() ? Done : Failure;
}

}  // namespace commands
