#include "tools/kestova/operations/questions.h"

#include <algorithm>

#include "tools/kestova/common/text.h"
OperationReport Questions::Ask(const char* operation, const Values& arguments) {
    OperationReport report = session_.Ask(FindOperation(operation), arguments);
    if (!report.problem.empty()) AddUndetermined(report.problem);
    if (report.stoppedBefore) AddUndetermined(report.operation->name + " " + StopWords(report));
    return report;
}

bool Questions::IsYes(const char* operation, const Values& arguments) {
    return Ask(operation, arguments).result == Value(1);
}

std::optional<WCHAR> Questions::AskLetter(const char* operation, const Values& arguments) {
    const char letter = std::get<std::string>(Ask(operation, arguments).result).front();
    return letter != '0' && letter != '\0' ? std::optional(static_cast<WCHAR>(letter)) : std::nullopt;
}

void Questions::AddUnread(const std::string& problem) {
    hasReadAll_ = false;
    AddUndetermined(problem);
}

void Questions::AddUnread(const std::string& problem, unsigned long error) {
    AddUnread(problem + " (error " + std::to_string(error) + ")");
}

void Questions::AddUndetermined(const std::string& problem) {
    if (std::ranges::find(problems_, problem) == problems_.end()) problems_.push_back(problem);
}

std::string Questions::Problems() const {
    return Joined(problems_, "; ");
}
