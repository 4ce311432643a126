#include "tools/kestova/command_line/messages.h"

#include <iostream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/reports/as_json.h"

void ShowMessage(const std::string& message) {
    if (!message.empty()) std::cerr << "kestova: " << message << "\n";
}

void ShowMessages(const std::vector<std::string>& messages) {
    for (const std::string& message : messages)
        ShowMessage(message);
}

void ShowError(bool json, const std::string& message, int status) {
    if (json) {
        std::cerr << ErrorAsJson(message, status);
    } else {
        ShowMessage(message);
    }
}

int ShowProblem(const CommandLine& line, const std::string& problem) {
    if (problem.empty()) return Done;
    ShowError(line.json, problem, Failure);
    return Failure;
}
