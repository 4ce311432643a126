#include "tools/kestova/command_line/messages.h"

#include <iostream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/json/as_json.h"

void ShowMessage(const std::string& message) {
    if (!message.empty()) std::cerr << "kestova: " << PrintableText(message) << "\n";
}

void ShowNote(const CommandLine& line, const std::string& note) {
    if (!line.quiet) ShowMessage(note);
}

void ShowNotes(const CommandLine& line, const std::vector<std::string>& notes) {
    for (const std::string& note : notes)
        ShowNote(line, note);
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
