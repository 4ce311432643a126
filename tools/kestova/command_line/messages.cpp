#include "tools/kestova/command_line/messages.h"

#include <chrono>
#include <iostream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/json/as_json.h"

namespace {

std::string MessageText(const std::string& message) {
    return "kestova: " + PrintableText(message) + "\n";
}

}  // namespace

void ShowMessage(const std::string& message) {
    if (!message.empty()) std::cerr << MessageText(message);
}

void ShowNote(const CommandLine& line, const std::string& note) {
    if (!line.quiet) ShowMessage(note);
}

void ShowNotes(const CommandLine& line, const std::vector<std::string>& notes) {
    for (const std::string& note : notes)
        ShowNote(line, note);
}

void ShowError(bool json, const std::string& message, int status) {
    std::cerr << ErrorText(json, message, status);
}

std::string ErrorText(bool json, const std::string& message, int status) {
    return json ? ErrorAsJson(message, status) : MessageText(message);
}

int ShowProblem(const CommandLine& line, const std::string& problem) {
    if (problem.empty()) return Done;
    ShowError(line.json, problem, Failure);
    return Failure;
}

void ShowRemarks(const CommandLine& line, const std::vector<Finding>& remarks) {
    for (const Finding& remark : remarks)
        ShowNote(line, remark.text);
}

ProgressPlace PlaceOfProgress(const CommandLine& line) {
    const Terminal terminal = StandardError();
    if (line.quiet || line.json || !terminal.isRewritten) return {};
    return {.terminal = &std::cerr, .columns = terminal.columns, .now = [] {
                return std::chrono::duration_cast<std::chrono::milliseconds>(
                    std::chrono::steady_clock::now().time_since_epoch());
            }};
}
