// The commands that call operations of the class.

#include <algorithm>

#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/commands.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/progress.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/script.h"
#include "tools/kestova/process/interruption.h"
#include "tools/kestova/reports/remarks.h"
#include "tools/kestova/reports/switch_check.h"

namespace {

const std::vector<std::pair<std::string, std::string>>& BootTargets() {
    static const std::vector<std::pair<std::string, std::string>> targets = {{"recovery", "SetRcvprtActive"},
                                                                             {"system", "SetSystemActive"}};
    return targets;
}

// The operation has answered; what it changed is not on the disk image.
void CheckWritten(const OperationReport& report) {
    if (!report.unwritten.empty()) throw Failed(report.unwritten);
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
    const int disk = session.AskNumber("GetFirstInternalDriveNumber");
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
    ShowProblem(line, report.problem);
    progress.Add(1);
    return {StatusOf(report), report.remarks};
}

std::string CallsText(uint64_t count) {
    return std::to_string(count);
}

// Where the results are not on the same terminal.
ProgressPlace PlaceOfScript(const CommandLine& line) {
    return StandardOutput().isRewritten ? ProgressPlace() : PlaceOfProgress(line);
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

}  // namespace

namespace commands {

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

}  // namespace commands

std::string BootStatuses(size_t columns) {
    std::string text;
    for (const auto& [name, operationName] : BootTargets()) {
        text += "  boot " + name + ":\n" + ResultsText(FindOperation(operationName), "    ", columns);
    }
    return text;
}
