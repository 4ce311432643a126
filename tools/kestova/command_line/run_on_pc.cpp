#include "tools/kestova/command_line/run_on_pc.h"

#include <fstream>
#include <iostream>

#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/output_files.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/printable_lines.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/json/taped_operations.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/picture/making_time.h"
#include "tools/kestova/process/confinement.h"
#include "tools/kestova/process/interruption.h"
#include "tools/kestova/recording/recorded_library.h"
#include "tools/kestova/recording/recorder.h"
#include "tools/kestova/reports/remarks.h"

namespace {

// Where the log records are written: nowhere, to a file, or to a standard stream. With --json that is
// standard error.
class LogOutput {
  public:
    LogOutput(const CommandLine& line, std::optional<OutputFile>& file)
        : name_(line.log), lines_(line.json ? std::cerr : std::cout), shown_(&lines_) {
        if (file) file_ = file->Stream();
    }
    std::ostream* Stream() {
        if (name_.empty()) return nullptr;
        return name_ == "-" ? &shown_ : &file_;
    }
    // False if a record was not written to the file.
    bool Close() {
        if (file_.is_open()) file_.close();
        return !file_.fail();
    }

  private:
    std::string name_;
    PrintableLines lines_;
    std::ostream shown_;
    std::ofstream file_;
};

constexpr const char* recordingNote =
    " holds what the PC answered: serial numbers, labels, paths and all else that the library asked for";

// What is between the library and the PC: nothing, or a tape.
class TapeBetween {
  public:
    TapeBetween(const CommandLine& line, std::optional<OutputFile>& file, Replay* replay) {
        if (file) {
            file_ = file->Stream();
            recorder_.emplace(file_, line.command + " " + Joined(line.arguments, " "), MakingTime());
        }
        if (recorder_) Put(*recorder_);
        if (replay != nullptr) Put(*replay);
    }
    OperationWatch* Watch() { return operations_ ? &*operations_ : nullptr; }
    // False if a line was not written.
    bool Close() {
        if (file_.is_open()) file_.close();
        return !file_.fail();
    }

  private:
    void Put(Tape& tape) {
        operations_.emplace(tape);
        library_.emplace(tape);
    }

    std::ofstream file_;
    std::optional<Recorder> recorder_;
    std::optional<TapedOperations> operations_;
    std::optional<RecordedLibrary> library_;
};

// The last object, where something is added to it at the end.
std::string keptBack;

bool AddsToLast(const CommandLine& line) {
    return line.json && (line.choice.ledger || !line.choice.faults.empty());
}

void ShowKeptBack() {
    std::cout << std::exchange(keptBack, "") << std::flush;
}

// Shows it also if the command ends early.
class KeepingBack {
  public:
    KeepingBack() = default;
    ~KeepingBack() { ShowKeptBack(); }
    KeepingBack(const KeepingBack&) = delete;
    KeepingBack& operator=(const KeepingBack&) = delete;
};

void ShowEnd(const CommandLine& line, const OpenedPc& pc) {
    const std::vector<FaultCount> faults = pc.FaultCounts();
    if (AddsToLast(line)) {
        EndReport end{.faults = faults};
        if (line.choice.ledger) end.ledger = pc.Ledger();
        keptBack = WithEnd(keptBack, end);
    } else if (line.choice.ledger) {
        ShowText(line, LedgerText(pc.Ledger()));
    }
    for (const Finding& unmet : UnmetFaults(faults))
        ShowNote(line, unmet.text);
}

// Construction and destruction have no result: as text they are shown only in a trace.
void ShowLife(const CommandLine& line, const OperationReport& report) {
    if (line.json) {
        Show(line, report);
    } else if (line.choice.trace) {
        std::cout << PrintableText(TraceText(report)) << report.operation->name << "\n" << std::flush;
    }
}

void Initialize(const CommandLine& line, const PcWork& work, Session& session) {
    const OperationReport report = session.Call(FindOperation("Initialize"), {{"reserved", false}});
    if (work.showLife) Show(line, report);
    const auto& results = report.operation->results;
    if (IsFailure(*report.operation, report.result))
        ShowMessage("Initialize: " + std::string(FindMeaning(results, report.result)->words));
}

int RunOnObject(const CommandLine& line, const PcWork& work, Session& session) {
    const OperationReport made = session.Construct();
    if (work.showLife) ShowLife(line, made);
    if (work.initialize && line.initialize) Initialize(line, work, session);
    const int status = work.run(session);
    const OperationReport destroyed = session.Destroy();
    if (work.showLife) ShowLife(line, destroyed);
    return status;
}

ConfinedWork WorkOn(const CommandLine& line, const PcWork& work, const InputFiles& inputs) {
    const bool writesImages = work.access == Access::Change && !line.choice.dryRun && !inputs.images.empty();
    return {.writesImages = writesImages,
            .writesDisks = writesImages && inputs.haveDisks,
            .saves = !line.choice.save.empty() || (!line.output.empty() && line.output != "-"),
            .imageBytes = inputs.imageBytes,
            .operations = work.operations};
}

void ShowChanges(const CommandLine& line, const OpenedPc& pc) {
    const auto changes = pc.Changes();
    if (!changes) return;
    std::ostream& output = line.json ? std::cerr : std::cout;
    const bool would = line.choice.dryRun;
    if (changes->empty()) {
        output << (would ? "Nothing would change.\n" : "Nothing changed.\n");
        return;
    }
    output << (would ? "Would change:\n" : "Changed:\n");
    for (const std::string& change : *changes)
        output << "  " << PrintableText(change) << "\n";
}

// In JSON each operation names them.
void ShowBackups(const CommandLine& line, const OpenedPc& pc) {
    if (line.json) return;
    for (const std::string& backup : pc.Backups())
        std::cout << PrintableText(BackupText(backup));
}

}  // namespace

void WriteOutput(const std::string& text, OutputFiles& files) {
    if (!files.output) {
        std::cout << text << std::flush;
    } else if (!files.output->Replace(text)) {
        throw Failed(files.output->Path() + ": cannot be written");
    }
}

void ShowText(const CommandLine& line, const std::string& text) {
    if (!AddsToLast(line)) {
        std::cout << text << std::flush;
        return;
    }
    ShowKeptBack();
    keptBack = text;
}

int RunOnPc(const CommandLine& line, const PcWork& work) {
    const KeepingBack untilTheEnd;
    const std::unique_ptr<OpenedPc> opened = OpenPc(line.choice, work.access);
    OpenedPc& pc = *opened;
    OutputFiles files = FindOutputFiles(line, pc.Inputs(), work.script);
    LogOutput log(line, files.log);
    TapeBetween tape(line, files.record, work.replay);
    EndOpening();
    ConfineTo(WorkOn(line, work, pc.Inputs()));
    ShowNotes(line, pc.Notes());
    int status = Done;
    try {
        Session session(pc, log.Stream(), line.choice.trace, tape.Watch());
        status = RunOnObject(line, work, session);
    } catch (...) {
        ShowNotes(line, pc.LaterNotes());
        ShowBackups(line, pc);
        throw;
    }
    ShowNotes(line, pc.LaterNotes());
    ShowEnd(line, pc);
    if (line.choice.dryRun || (work.showChanges && !line.json)) ShowChanges(line, pc);
    ShowBackups(line, pc);
    if (!log.Close()) status = ShowProblem(line, line.log + ": cannot be written");
    if (!tape.Close()) status = ShowProblem(line, line.choice.record + ": cannot be written");
    if (files.record) ShowNote(line, line.choice.record + recordingNote);
    if (files.save || files.output) HoldInterruption();
    if (files.save) pc.Save(*files.save);
    if (work.output != nullptr) WriteOutput(*work.output, files);
    return status;
}
