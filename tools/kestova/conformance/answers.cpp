#include "tools/kestova/conformance/answers.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/utf.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/conformance/asked_operations.h"

namespace {

void NoteCallers(const OperationReport& report, PcAnswers& answers) {
    for (const machine::JournalEntry& entry : report.trace) {
        const auto* const call = std::get_if<machine::CallRecord>(&entry);
        if (call == nullptr) continue;
        std::vector<std::string>& callers = answers.callers[InTrace(*call)];
        if (std::ranges::count(callers, report.operation->name) == 0)
            callers.push_back(report.operation->name);
    }
}

OperationAnswer AnswerOf(const AskedOperation& asked, const OperationReport& report) {
    OperationAnswer answer{.operation = report.operation->name,
                           .arguments = Joined(asked.words, ", "),
                           .answer = AnswerWords(report)};
    for (const LogEntry& entry : report.log)
        answer.log.push_back(std::to_string(entry.level) + " " + OneLine(ToUtf8(entry.Text())));
    return answer;
}

void AskOperations(Session& session, PcAnswers& answers) {
    for (const AskedOperation& asked : AskedOperations()) {
        const OperationReport report = session.Call(*asked.operation, asked.arguments);
        NoteCallers(report, answers);
        answers.operations.push_back(AnswerOf(asked, report));
    }
}

}  // namespace

void AskDisk(Session& session, TrialDisk& disk, PcAnswers& answers) {
    DiskTrial trial = TryChanges(session.OnPc(), disk);
    std::ranges::move(trial.calls, std::back_inserter(answers.calls));
    answers.openAnswers = std::move(trial.answers);
    answers.left = std::move(trial.left);
}

// The operations come first: the first of them sets the security of COM, as it does for the library's users.
PcAnswers AskPc(Session& session) {
    PcAnswers answers;
    session.Construct();
    AskOperations(session, answers);
    answers.calls = MakeCalls(session.OnPc());
    session.Destroy();
    return answers;
}
