#include "tools/kestova/common/terminal.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

size_t ColumnsOfEnvironment() {
    const char* const columns = std::getenv("COLUMNS");
    const unsigned long number = columns != nullptr ? std::strtoul(columns, nullptr, 10) : 0;
    return number == 0 ? noLimit : number;
}

bool AllowsColour() {
    const char* const noColour = std::getenv("NO_COLOR");
    return (noColour == nullptr || *noColour == '\0') && !IsDumbTerminal();
}

bool IsDumbTerminal() {
    const char* const kind = std::getenv("TERM");
    return kind != nullptr && std::string_view(kind) == "dumb";
}

std::optional<bool> AskOnTerminal(const std::string& question) {
    if (!CanAsk()) return std::nullopt;
    std::cerr << PrintableText(question) << " [y/N] ";
    std::string answer;
    std::getline(std::cin, answer);
    if (answer.ends_with('\r')) answer.pop_back();
    return answer == "y" || answer == "yes";
}
