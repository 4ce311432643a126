#include "tools/kestova/operations/script.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/input_file.h"

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// A script is short; anything longer is another file, or one that never ends.
std::string ReadText(std::istream& script, const std::string& name) {
    constexpr size_t most = size_t{1} << 20;
    std::string text = ReadUpTo(script, most);
    if (script.bad()) throw WrongUse(name + ": cannot be read");
    if (text.size() > most) throw WrongUse(name + ": larger than 1 MiB, so no script");
    return text;
}

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line.substr(0, line.find('#')));
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// Users confuse the commands of the program with operations.
PlannedCall Plan(const std::vector<std::string>& words) {
    if (words.front() == "status" || words.front() == "letters" || words.front() == "boot") {
        throw WrongUse("'" + words.front() +
                       "' is a command; only operations stand in a script (kestova operations lists them)");
    }
    const Operation& operation = FindOperation(words.front());
    return {&operation, ReadArguments(operation, {words.begin() + 1, words.end()})};
}

}  // namespace

PlannedCall ReadCall(const std::string& line) {
    const std::vector<std::string> words = Words(line);
    if (words.empty()) throw WrongUse("'" + line + "' names no operation");
    return Plan(words);
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

std::vector<PlannedCall> ReadScript(std::istream& script, const std::string& name) {
    std::istringstream lines(ReadText(script, name));
    std::vector<PlannedCall> calls;
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (line.find('\0') != std::string::npos)
            throw WrongUse(name + ":" + std::to_string(number) + ": not text; a script is written in UTF-8");
        if (number == 1 && line.starts_with(byteOrderMark)) line.erase(0, byteOrderMark.size());
        const std::vector<std::string> words = Words(line);
        if (words.empty()) continue;
        try {
            calls.push_back(Plan(words));
        } catch (const WrongUse& wrong) {
            throw WrongUse(name + ":" + std::to_string(number) + ": " + wrong.what());
        }
    }
    return calls;
}

std::vector<PlannedCall> ReadScriptFile(const std::string& file) {
    if (file == "-") return ReadScript(std::cin, "standard input");
    std::error_code error;
    if (!std::filesystem::exists(file, error)) throw WrongUse(file + ": there is no such file");
    std::ifstream script(std::filesystem::path(file), std::ios::binary);
    if (!script) throw WrongUse(file + ": cannot be read");
    return ReadScript(script, file);
}
