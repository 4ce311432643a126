#include "tools/kestova/conformance/answers.h"

#include <algorithm>

#include "base/utf.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/conformance/error_boxes.h"
#include "tools/kestova/conformance/probes.h"
#include "tools/kestova/conformance/questions.h"

namespace {

std::string InTrace(const machine::CallRecord& call) {
    return call.call + "(" + Joined(call.arguments, ", ") + ")";
}

void NoteCallers(const OperationReport& report, PcAnswers& answers) {
    for (const machine::JournalEntry& entry : report.trace) {
        const auto* const call = std::get_if<machine::CallRecord>(&entry);
        if (call == nullptr) continue;
        std::vector<std::string>& callers = answers.callers[InTrace(*call)];
        if (std::ranges::count(callers, report.operation->name) == 0)
            callers.push_back(report.operation->name);
    }
}

OperationAnswer AnswerOf(const Question& question, const OperationReport& report) {
    OperationAnswer answer{.operation = report.operation->name,
                           .arguments = Joined(question.words, ", "),
                           .answer = AnswerWords(report)};
    for (const LogEntry& entry : report.log)
        answer.log.push_back(std::to_string(entry.level) + " " + OneLine(ToUtf8(entry.Text())));
    return answer;
}

void AskOperations(Session& session, PcAnswers& answers) {
    for (const Question& question : Questions()) {
        const OperationReport report = session.Call(*question.operation, question.arguments);
        NoteCallers(report, answers);
        answers.operations.push_back(AnswerOf(question, report));
    }
}

void MakeCalls(Probes& probes) {
    ProbeLetters(probes);
    ProbeDevices(probes);
    ProbeFiles(probes);
    ProbePaths(probes);
    ProbeProfiles(probes);
    ProbeRegistry(probes);
    ProbeSystem(probes);
    ProbeText(probes);
    ProbeClasses(probes);
    ProbeDiskService(probes);
    ProbeEncryption(probes);
    ProbeDeviceSetup(probes, ProbeDiskDrives(probes));
}

}  // namespace

void Probes::Add(const char* call, const std::string& arguments, const std::string& answer) {
    CallAnswer made{.call = call, .arguments = arguments, .answer = answer};
    for (const machine::JournalEntry& entry : pc_.TakeTrace()) {
        const auto* const record = std::get_if<machine::CallRecord>(&entry);
        if (record != nullptr && record->call == call) made.inTrace = InTrace(*record);
    }
    calls_.push_back(std::move(made));
}

// The operations come first: the first of them sets the security of COM, as it does for the library's users.
PcAnswers AskPc(OpenedPc& pc) {
    ShowNoErrorBoxes();
    PcAnswers answers;
    Session session(pc, nullptr, false);
    session.Construct();
    AskOperations(session, answers);
    Probes probes(pc);
    MakeCalls(probes);
    answers.calls = probes.Take();
    session.Destroy();
    return answers;
}
