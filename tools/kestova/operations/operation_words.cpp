// Parses operations and arguments, and finds the words of values.

#include <algorithm>
#include <charconv>
#include <map>

#include "base/text_case.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operation_report.h"

namespace {

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const Operation& operation : Operations())
        names.push_back(operation.name);
    return names;
}

int ReadNumber(const Parameter& parameter, const std::string& word) {
    int number = 0;
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, number);
    if (error == std::errc::result_out_of_range) {
        throw WrongUse(parameter.name + ": " + word + " does not fit into 32 bits");
    }
    if (error != std::errc() || rest != end) {
        throw WrongUse(parameter.name + ": '" + word + "' is not a number");
    }
    return number;
}

bool ReadFlag(const Parameter& parameter, const std::string& word) {
    static const std::map<std::string, bool> flags = {
        {"0", false}, {"1", true}, {"false", false}, {"true", true}};
    const auto found = flags.find(word);
    if (found == flags.end()) throw WrongUse(parameter.name + ": '" + word + "' is neither true nor false");
    return found->second;
}

int ReadCount(const Parameter& parameter, const std::string& word) {
    constexpr int most = 65536;
    const int number = ReadNumber(parameter, word);
    if (number < 0 || number > most) {
        throw WrongUse(parameter.name + ": " + word + " is not from 0 to " + std::to_string(most));
    }
    return number;
}

// "C" or "C:", upper or lower case.
std::string ReadLetter(const Parameter& parameter, const std::string& word) {
    std::string letter = UpperCase(word.ends_with(':') ? word.substr(0, word.size() - 1) : word);
    if (letter.size() != 1 || letter[0] < 'A' || letter[0] > 'Z') {
        throw WrongUse(parameter.name + ": '" + word + "' is not a letter from A to Z");
    }
    return letter;
}

Value ReadValue(const Parameter& parameter, const std::string& word) {
    switch (parameter.kind) {
        case Kind::Flag:
            return ReadFlag(parameter, word);
        case Kind::Count:
            return ReadCount(parameter, word);
        case Kind::Letter:
            return ReadLetter(parameter, word);
        default:
            return ReadNumber(parameter, word);
    }
}

std::vector<Parameter> Inputs(const Operation& operation) {
    std::vector<Parameter> inputs;
    std::copy_if(operation.parameters.begin(), operation.parameters.end(), std::back_inserter(inputs),
                 [](const Parameter& parameter) { return !parameter.output; });
    return inputs;
}

}  // namespace

const Operation& FindOperation(std::string_view name) {
    const auto& operations = Operations();
    const auto found = std::find_if(operations.begin(), operations.end(),
                                    [&](const Operation& operation) { return operation.name == name; });
    if (found == operations.end()) throw WrongUse(UnknownWord("operation", name, Names()));
    return *found;
}

std::string Usage(const Operation& operation) {
    std::string usage = operation.name;
    for (const Parameter& parameter : Inputs(operation)) {
        const std::string name = UpperCase(parameter.name);
        usage += " " + (IsNothing(parameter.standard) ? name : "[" + name + "]");
    }
    return usage;
}

Values ReadArguments(const Operation& operation, const std::vector<std::string>& words) {
    const std::vector<Parameter> inputs = Inputs(operation);
    const size_t fewest =
        static_cast<size_t>(std::count_if(inputs.begin(), inputs.end(), [](const Parameter& parameter) {
            return IsNothing(parameter.standard);
        }));
    if (words.size() < fewest || words.size() > inputs.size()) {
        const std::string least = fewest < inputs.size() ? std::to_string(fewest) + " to " : "";
        throw WrongUse(operation.name + " takes " + least + Count(inputs.size(), "argument") + ", not " +
                       std::to_string(words.size()) + ": " + Usage(operation));
    }
    Values arguments;
    for (size_t i = 0; i < inputs.size(); ++i)
        arguments.emplace_back(inputs[i].name,
                               i < words.size() ? ReadValue(inputs[i], words[i]) : inputs[i].standard);
    return arguments;
}

const Value& ValueOf(const Values& values, std::string_view name) {
    return std::find_if(values.begin(), values.end(), [&](const auto& value) { return value.first == name; })
        ->second;
}

const Meaning* FindMeaning(const std::vector<Meaning>& meanings, const Value& value) {
    const auto found = std::find_if(meanings.begin(), meanings.end(),
                                    [&](const Meaning& meaning) { return meaning.value == value; });
    return found != meanings.end() ? &*found : nullptr;
}

bool IsFailure(const Operation& operation, const Value& result) {
    const Meaning* const meaning = FindMeaning(operation.results, result);
    return meaning != nullptr && meaning->after.advice != Advice::None;
}

const char* NameOf(Advice advice) {
    switch (advice) {
        case Advice::None:
            return "";
        case Advice::Retry:
            return "retry";
        case Advice::GiveUp:
            return "give-up";
        case Advice::Undo:
            return "undo";
        case Advice::GoOn:
            break;
    }
    return "go-on";
}

std::string WordsOf(const Value& value, const std::vector<Meaning>& meanings, const char* otherwise) {
    const Meaning* const meaning = FindMeaning(meanings, value);
    return meaning != nullptr ? meaning->words : otherwise;
}

std::string StopWords(const OperationReport& report) {
    return "would first " + *report.stoppedBefore + "; this was not done, and what follows it is unknown";
}

int StatusOf(const OperationReport& report) {
    return IsFailure(*report.operation, report.result) || !report.problem.empty() ? Failure : Done;
}

std::string ResultWords(const OperationReport& report) {
    if (report.outcome != nullptr) return report.outcome;
    return WordsOf(report.result, report.operation->results, report.operation->otherwise);
}
