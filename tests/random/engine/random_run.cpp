#include "tests/random/engine/random_run.h"

#include "base/com_apartment.h"
#include "machine/generation/generated_pc.h"
#include "machine/generation/wild_pc.h"
#include "machine/journal/emulated_pc.h"
#include "tests/random/engine/model.h"

namespace randomly {

using machine::Choice;

namespace {

std::string RandomWord(const Parameter& parameter, Choice& choice) {
    switch (parameter.kind) {
        case Kind::Flag:
            return choice.OneIn(2) ? "true" : "false";
        case Kind::Letter:
            return std::string(1, static_cast<char>('A' + choice.Below(26)));
        case Kind::Count:
            return std::to_string(choice.Below(40));
        default:
            return std::to_string(parameter.name == "disk" ? choice.Below(4) : choice.Below(9));
    }
}

std::vector<std::string> RandomWords(const Operation& operation, Choice& choice) {
    std::vector<std::string> words;
    for (const Parameter& parameter : operation.parameters) {
        if (!parameter.output) words.push_back(RandomWord(parameter, choice));
    }
    return words;
}

// One operation and what contradicts the model.
std::string RunOne(Kestova& object, machine::EmulatedPc& pc, Choice& choice) {
    const Operation& operation = Operations()[choice.Below(Operations().size())];
    const std::vector<std::string> words = RandomWords(operation, choice);
    const Values arguments = ReadArguments(operation, words);
    const int internalDisk = object.GetFirstInternalDriveNumber();
    const machine::Pc before = pc.facts;
    Values outputs;
    const Value result = operation.invoke(object, arguments, outputs);
    const std::string contradiction =
        Contradiction({operation, arguments, result, outputs, internalDisk, before, pc.facts});
    if (contradiction.empty()) return "";
    std::string line = operation.name;
    for (const std::string& word : words)
        line += " " + word;
    const auto* const number = std::get_if<int>(&result);
    const auto* const text = std::get_if<std::string>(&result);
    const std::string value = number != nullptr ? std::to_string(*number)
                              : text != nullptr ? *text
                                                : "nothing";
    return line + " = " + value + ": " + contradiction;
}

}  // namespace

machine::Pc PcOf(Choice& choice) {
    return choice.OneIn(2) ? machine::WildPc(choice) : machine::RandomPc(choice);
}

std::string RunOnPc(uint64_t seed) {
    Choice choice(seed);
    machine::EmulatedPc pc(PcOf(choice));
    std::string contradictions;
    const auto add = [&](const std::string& what) {
        if (!what.empty()) contradictions += "seed " + std::to_string(seed) + ": " + what + "\n";
    };
    {
        const ComApartment com;
        Kestova object;
        object.Initialize(false);
        for (int count = 0; count < operationsOnOnePc; ++count)
            add(RunOne(object, pc, choice));
    }
    for (const std::string& violation : pc.ledger.Violations())
        add(violation);
    return contradictions;
}

std::string RunMany(uint64_t operations, uint64_t seed) {
    std::string contradictions;
    for (uint64_t done = 0; done < operations; done += operationsOnOnePc)
        contradictions += RunOnPc(seed++);
    return contradictions;
}

}  // namespace randomly
