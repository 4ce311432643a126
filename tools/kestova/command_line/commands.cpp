#include "tools/kestova/command_line/commands.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <span>

#include "base/utf.h"
#include "tools/kestova/command_line/completion.h"
#include "tools/kestova/command_line/file_argument.h"
#include "tools/kestova/command_line/help.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/command_line/script.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/progress.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/json/output_keys.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/picture/columns.h"
#include "tools/kestova/picture/report.h"
#include "tools/kestova/picture/status_text.h"
#include "tools/kestova/process/interruption.h"
#include "tools/kestova/reports/remarks.h"

namespace {

void ShowRemarks(const CommandLine& line, const std::vector<Finding>& remarks) {
    for (const Finding& remark : remarks)
        ShowNote(line, remark.text);
}

StatusLook LookOf(const CommandLine& line) {
    return {.inBytes = line.bytes,
            .tablesOnly = line.quiet,
            .columns = line.columns,
            .terminal = StandardOutput()};
}

// Shows on standard error what a report remarks and what it could not read, which is a failure.
template <typename Report>
int ShowProblem(const CommandLine& line, const Report& report) {
    if constexpr (requires { report.remarks; }) ShowRemarks(line, report.remarks);
    return ShowProblem(line, report.problem);
}

template <typename Report>
int ShowWithProblem(const CommandLine& line, const Report& report) {
    Show(line, report);
    return ShowProblem(line, report);
}

int Status(const CommandLine& line) {
    if (!line.columns.empty()) ColumnsOf(line.columns);
    return RunOnPc(line, {.initialize = false, .run = [&](Session& session) {
                              const StatusReport status = ReadStatus(session, line.initialize);
                              ShowText(line, line.json ? AsJson(status) : StatusText(status, LookOf(line)));
                              return ShowProblem(line, status);
                          }});
}

// Standard error, if that is a terminal and for people.
ProgressPlace PlaceOfProgress(const CommandLine& line) {
    const Terminal terminal = StandardError();
    if (line.quiet || line.json || !terminal.isRewritten) return {};
    return {.terminal = &std::cerr, .columns = terminal.columns, .now = [] {
                return std::chrono::duration_cast<std::chrono::milliseconds>(
                    std::chrono::steady_clock::now().time_since_epoch());
            }};
}

int Files(const CommandLine& line) {
    const FilePlace place = ReadFilePlace(line.arguments[0]);
    return RunOnPc(line, {.run = [&](Session& session) {
                       return ShowWithProblem(line,
                                              ReadFiles(session, place, line.hash, PlaceOfProgress(line)));
                   }});
}

int Letters(const CommandLine& line) {
    return RunOnPc(line,
                   {.run = [&](Session& session) { return ShowWithProblem(line, ReadLetters(session)); }});
}

int Check(const CommandLine& line) {
    return RunOnPc(line, {.access = Access::Rehearse, .run = [&](Session& session) {
                              const SwitchReport report = CheckSwitch(session);
                              const int status = ShowWithProblem(line, report);
                              return report.isPossible ? status : int{Failure};
                          }});
}

struct Format {
    const char* name;
    std::string (*text)(const PcReport& report);
    bool isForTerminal;
};

constexpr Format formats[] = {{"html", HtmlPage, false}, {"markdown", MarkdownText, true}};

const Format& FormatOf(const CommandLine& line) {
    std::vector<std::string> names;
    for (const Format& format : formats) {
        if (line.format.empty() || line.format == format.name) return format;
        names.emplace_back(format.name);
    }
    throw WrongUse("--format: " + UnknownWord("format", line.format, names));
}

std::vector<LoggedLine> Logged(LogCollector& collector) {
    std::vector<LoggedLine> lines;
    for (const LogEntry& entry : collector.Take()) {
        std::string text = OneLine(ToUtf8(entry.Text()));
        std::ranges::replace(text, '\t', ' ');
        lines.push_back({entry.level, text});
    }
    return lines;
}

int Report(const CommandLine& line) {
    const Format& format = FormatOf(line);
    if (line.output.empty() && !format.isForTerminal)
        throw WrongUse("report: name the file with --output, or standard output with --output -");
    LogCollector collector(nullptr);
    std::string page;
    return RunOnPc(
        line,
        {.access = Access::Rehearse, .initialize = false, .output = &page, .run = [&](Session& session) {
             PcReport report{.maker = "kestova " KESTOVA_VERSION};
             report.status = ReadStatus(session, line.initialize);
             report.check = CheckSwitch(session);
             report.notes = session.OnPc().Notes();
             std::ranges::copy(session.OnPc().LaterNotes(), std::back_inserter(report.notes));
             report.log = Logged(collector);
             page = format.text(report);
             return ShowProblem(line, report.status);
         }});
}

const std::vector<std::pair<std::string, std::string>>& BootTargets() {
    static const std::vector<std::pair<std::string, std::string>> targets = {{"recovery", "SetRcvprtActive"},
                                                                             {"system", "SetSystemActive"}};
    return targets;
}

// The operation has answered; what it changed is not on the disk image.
void CheckWritten(const OperationReport& report) {
    if (!report.unwritten.empty()) throw Failed(report.unwritten);
}

Access AccessFor(const Operation& operation) {
    return operation.changesPc ? Access::Change : Access::Ask;
}

Access AccessFor(const std::vector<PlannedCall>& calls) {
    Access most = Access::Ask;
    for (const PlannedCall& call : calls)
        most = std::max(most, AccessFor(*call.operation));
    return most;
}

// The result code is the exit status. What else was found out follows the report; in JSON the reasons are in
// it.
int BootAndShow(const CommandLine& line, Session& session, const Operation& operation) {
    OperationReport report = session.Call(operation, {});
    if (report.stoppedBefore) {
        Show(line, report);
        return Done;
    }
    const int result = std::get<int>(report.result);
    if (!line.json || !report.unwritten.empty()) Show(line, report);
    CheckWritten(report);
    const int disk = session.Object().GetFirstInternalDriveNumber();
    if (result != 0) report.reasons = WhySwitchRefused(session, disk);
    report.remarks = RemarksOn(session.OnPc());
    if (operation.name == "SetSystemActive" && result == 0) {
        if (const auto still = StillRecovery(session.OnPc(), disk)) report.remarks.push_back(*still);
    }
    if (line.json) Show(line, report);
    ShowRemarks(line, report.remarks);
    for (const Finding& reason : report.reasons)
        ShowMessage(operation.name + ": " + reason.text);
    return result;
}

int Boot(const CommandLine& line) {
    std::vector<std::string> names;
    for (const auto& [name, operationName] : BootTargets()) {
        names.push_back(name);
        if (name != line.arguments[0]) continue;
        const Operation& operation = FindOperation(operationName);
        return RunOnPc(line,
                       {.access = AccessFor(operation), .showChanges = true, .run = [&](Session& session) {
                            return BootAndShow(line, session, operation);
                        }});
    }
    throw WrongUse("boot: " + UnknownWord("system to boot", line.arguments[0], names));
}

struct ShownCall {
    int status = Done;
    std::vector<Finding> remarks = {};
};

ShownCall CallAndShow(const CommandLine& line, Session& session, const PlannedCall& call,
                      Progress& progress) {
    OperationReport report = session.Call(*call.operation, call.arguments);
    if (call.operation->changesPc && !report.stoppedBefore) report.remarks = RemarksOn(session.OnPc());
    Show(line, report);
    if (report.stoppedBefore) return {};
    CheckWritten(report);
    if (!report.problem.empty()) progress.Hide();
    const int status = ShowProblem(line, report.problem);
    progress.Add(1);
    return {IsFailure(*call.operation, report.result) ? Failure : status, report.remarks};
}

std::string CallsText(uint64_t count) {
    return std::to_string(count);
}

// Where the results are not on the same terminal.
ProgressPlace PlaceOfScript(const CommandLine& line) {
    return StandardOutput().isRewritten ? ProgressPlace() : PlaceOfProgress(line);
}

int Call(const CommandLine& line) {
    const Operation& operation = FindOperation(line.arguments[0]);
    const std::vector<std::string> words(line.arguments.begin() + 1, line.arguments.end());
    const PlannedCall call{&operation, ReadArguments(operation, words)};
    return RunOnPc(line, {.access = AccessFor(operation),
                          .initialize = operation.name != "Initialize",
                          .showChanges = operation.changesPc,
                          .run = [&](Session& session) {
                              Progress notShown({}, "", 1, CallsText);
                              const auto [status, remarks] = CallAndShow(line, session, call, notShown);
                              ShowRemarks(line, remarks);
                              return status;
                          }});
}

// With the worst status, and the remarks on what the script leaves.
ShownCall RunScript(const CommandLine& line, Session& session, const std::vector<PlannedCall>& calls) {
    Progress progress(PlaceOfScript(line), "Running", calls.size(), CallsText);
    ShownCall all;
    for (const PlannedCall& call : calls) {
        StopIfInterrupted();
        const ShownCall shown = CallAndShow(line, session, call, progress);
        all.status = std::max(all.status, shown.status);
        if (call.operation->changesPc) all.remarks = shown.remarks;
    }
    return all;
}

int Run(const CommandLine& line) {
    const std::vector<PlannedCall> calls = ReadScriptFile(line.arguments[0]);
    return RunOnPc(line, {.access = AccessFor(calls),
                          .showLife = true,
                          .script = line.arguments[0],
                          .operations = calls.size(),
                          .run = [&](Session& session) {
                              const auto [status, remarks] = RunScript(line, session, calls);
                              ShowRemarks(line, remarks);
                              return status;
                          }});
}

std::optional<std::string> ChangeWord(machine::Recovery recovery) {
    switch (recovery) {
        case machine::Recovery::Finished:
            return "finished";
        case machine::Recovery::TakenBack:
            return "takenBack";
        case machine::Recovery::None:
            break;
    }
    return std::nullopt;
}

int Recover(const CommandLine& line) {
    if (line.choice.images.empty()) throw WrongUse("recover: name the disk image with --image");
    const machine::ImageUse use = UseOfImages(line.choice, machine::ImageAccess::Write);
    for (const std::string& image : line.choice.images) {
        StopIfInterrupted();
        Show(line, RecoveryReport{image, ChangeWord(RecoverChange(image, use)), line.choice.dryRun});
    }
    return Done;
}

int RepairTables(const CommandLine& line) {
    if (line.choice.images.empty()) throw WrongUse("repair-table: name the disk image with --image");
    const machine::ImageUse use = UseOfImages(line.choice, machine::ImageAccess::Write);
    // One that cannot be repaired ends the command before any is written.
    machine::ImageUse looking = use;
    looking.access = machine::ImageAccess::Overlay;
    for (const std::string& image : line.choice.images)
        RepairTableOf(image, looking);
    for (const std::string& image : line.choice.images) {
        StopIfInterrupted();
        const auto [problems, backup, notes] = RepairTableOf(image, use);
        ShowNotes(line, notes);
        Show(line, TableRepairReport{image, problems, !problems.empty() && !line.choice.dryRun, backup});
    }
    return Done;
}

int Undo(const CommandLine& line) {
    const std::string& backup = line.arguments[0];
    if (line.choice.images.empty())
        throw WrongUse("undo: " + backup + " is not named after an image; name that with --image");
    if (line.choice.images.size() > 1) throw WrongUse("undo: it is for one --image");
    const std::string& image = line.choice.images.front();
    const auto [isUndone, ownBackup, notes] =
        UndoChange(image, backup, UseOfImages(line.choice, machine::ImageAccess::Write));
    ShowNotes(line, notes);
    Show(line, UndoReport{image, backup, isUndone, line.choice.dryRun, ownBackup});
    return Done;
}

int ListOperations(const CommandLine& line) {
    Show(line, Operations());
    return Done;
}

int ListPcs(const CommandLine& line) {
    Show(line, machine::NamedMachines());
    return Done;
}

int ListCalls(const CommandLine& line) {
    Show(line, machine::AllCalls());
    return Done;
}

int Help(const CommandLine& line) {
    ShowText(line, line.arguments.empty() ? HelpText() : HelpText(CommandOfName(line.arguments[0])));
    return Done;
}

int Completion(const CommandLine& line) {
    const std::string& first = line.arguments[0];
    if (first != "words") {
        std::cout << CompletionScript(first);
        return Done;
    }
    for (const Candidate& candidate : Complete({line.arguments.begin() + 1, line.arguments.end()}))
        std::cout << candidate.word << "\t" << candidate.meaning << "\n";
    return Done;
}

struct OptionUser {
    std::string_view option;
    int (*command)(const CommandLine& line);
};

constexpr OptionUser usedByFew[] = {{"--output", Report},
                                    {"--format", Report},
                                    {"--hash", Files},
                                    {"--bytes", Status},
                                    {"--columns", Status}};

constexpr OptionUser notUsedBy[] = {{"--json", Report},    {"--dry-run", Check},       {"--dry-run", Report},
                                    {"--ledger", Recover}, {"--ledger", RepairTables}, {"--ledger", Undo},
                                    {"--ledger", Report}};

bool IsIn(std::span<const OptionUser> table, const Command& command, const std::string& option) {
    return std::ranges::any_of(
        table, [&](const OptionUser& row) { return row.option == option && row.command == command.run; });
}

// Whether the first word is a file, so that the option before it was forgotten.
bool IsFile(const std::string& word) {
    std::error_code error;
    return std::filesystem::is_regular_file(word, error) || std::filesystem::is_block_file(word, error);
}

}  // namespace

std::string BootStatuses(size_t columns) {
    std::string text;
    for (const auto& [name, operationName] : BootTargets()) {
        text += "  boot " + name + ":\n" + ResultsText(FindOperation(operationName), "    ", columns);
    }
    return text;
}

bool Uses(const Command& command, const std::string& option) {
    if (option == "--help" || option == "--version") return true;
    if (option == "--schema") return FindOutput(command.name) != nullptr;
    if (command.run == Help || command.run == Completion) return false;
    if (IsIn(notUsedBy, command, option)) return false;
    if (std::ranges::count(usedByFew, option, &OptionUser::option) != 0)
        return IsIn(usedByFew, command, option);
    if (option == "--json") return true;
    return command.usesPc && (command.traces || option != "--trace");
}

const std::vector<Command>& Commands() {
    constexpr size_t any = 64;
    static const std::vector<Command> commands = {
        {"status", "", "What this PC is", 0, 0, true, false, Status},
        {"letters", "", "What each letter of the installed Windows stands for", 0, 0, true, false, Letters},
        {"files", "VOLUME[:\\PATH]", "What is in a folder of a volume, named by letter or partition", 1, 1,
         true, false, Files},
        {"check", "", "Whether this PC can boot its recovery partition and come back", 0, 0, true, false,
         Check},
        {"report", "", "All of that and the log as a page to attach to a ticket", 0, 0, true, false, Report},
        {"boot", "recovery|system", "Choose what it boots", 1, 1, true, true, Boot},
        {"call", "OPERATION [ARG...]", "Any public operation of the class, by its own name", 1, any, true,
         true, Call},
        {"run", "SCRIPT|-", "One operation a line, on one object", 1, 1, true, true, Run},
        {"recover", "", "Finish or take back a change of an image that was interrupted", 0, 0, true, false,
         Recover},
        {"undo", "BACKUP", "Take back what was changed on an image", 1, 1, true, false, Undo},
        {"repair-table", "", "Write a damaged GUID partition table anew from its good copy", 0, 0, true,
         false, RepairTables},
        {"operations", "", "Every public operation with its arguments and results", 0, 0, false, false,
         ListOperations},
        {"pcs", "", "The machines that come with the tool", 0, 0, false, false, ListPcs},
        {"calls", "", "The platform calls that --fail knows", 0, 0, false, false, ListCalls},
        {"completion", "SHELL", "What makes a shell complete command lines", 1, any, false, false,
         Completion},
        {"help", "[COMMAND]", "This, or what a command does", 0, 1, false, false, Help},
    };
    return commands;
}

bool ReadsHives(const CommandLine& line) {
    const auto command = std::ranges::find(Commands(), line.command, &Command::name);
    if (command == Commands().end()) return false;
    // The only operation that does.
    if (command->run == Call)
        return !line.arguments.empty() && line.arguments.front() == "GetWinDriveLetters";
    return command->run == Letters || command->run == Run;
}

const Command& CommandOfName(const std::string& name) {
    if (name.empty()) throw WrongUse("no command was given");
    std::vector<std::string> names;
    for (const Command& command : Commands()) {
        if (name == command.name) return command;
        // Those that write to images by themselves are not suggested.
        if (command.run != Recover && command.run != RepairTables && command.run != Undo)
            names.emplace_back(command.name);
    }
    if (IsFile(name)) throw WrongUse("there is no command '" + name + "'; an image is named with --image");
    throw WrongUse(UnknownWord("command", name, names));
}

const Command& FindCommand(const CommandLine& line) {
    const Command& command = CommandOfName(line.command);
    const size_t count = line.arguments.size();
    if (count < command.fewest || count > command.most) {
        const std::string arguments = *command.arguments != '\0' ? " " : "";
        throw WrongUse("usage: kestova [PC] " + line.command + arguments + command.arguments);
    }
    for (const std::string& option : line.options) {
        if (!Uses(command, option)) throw WrongUse(line.command + " does not use " + option);
    }
    return command;
}
