#include "tools/kestova/conformance/conformance.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "tools/kestova/common/text.h"

namespace {

// One of the things that were asked of a PC.
struct Asked {
    ConformanceDifference without;  // answers
    std::string answer;
    std::string inTrace;
};

std::vector<Asked> CallsOf(const PcAnswers& answers) {
    std::vector<Asked> all;
    for (const CallAnswer& call : answers.calls)
        all.push_back({{.name = call.call, .arguments = call.arguments}, call.answer, call.inTrace});
    return all;
}

// Which answers of two PCs belong together: the call, its arguments, and the how many-th such call it is.
using Key = std::tuple<std::string, std::string, int>;

std::map<Key, const Asked*> ByKey(const std::vector<Asked>& all) {
    std::map<Key, const Asked*> byKey;
    std::map<std::pair<std::string, std::string>, int> count;
    for (const Asked& asked : all) {
        const int number = ++count[{asked.without.name, asked.without.arguments}];
        byKey[{asked.without.name, asked.without.arguments, number}] = &asked;
    }
    return byKey;
}

std::vector<std::string> CallersOf(const std::string& inTrace, const PcAnswers& emulated) {
    const auto found = emulated.callers.find(inTrace);
    return found != emulated.callers.end() ? found->second : std::vector<std::string>();
}

ConformanceDifference With(const Asked& asked, std::optional<std::string> here,
                           std::optional<std::string> emulated, std::vector<std::string> operations) {
    ConformanceDifference difference = asked.without;
    difference.here = std::move(here);
    difference.emulated = std::move(emulated);
    difference.operations = std::move(operations);
    return difference;
}

// In the order in which the PC at hand was asked; what only the emulated one was asked comes last.
void CompareCalls(const PcAnswers& here, const PcAnswers& emulated, ConformanceReport& report) {
    const std::vector<Asked> left = CallsOf(here);
    const std::vector<Asked> right = CallsOf(emulated);
    std::map<Key, const Asked*> others = ByKey(right);
    std::map<Key, const Asked*> own = ByKey(left);
    std::map<const Asked*, Key> keys;
    for (const auto& [key, asked] : own)
        keys[asked] = key;
    for (const Asked& asked : left) {
        const auto other = others.find(keys[&asked]);
        const bool isAlone = other == others.end();
        if (!isAlone && other->second->answer == asked.answer) continue;
        report.differences.push_back(isAlone ? With(asked, asked.answer, std::nullopt, {})
                                             : With(asked, asked.answer, other->second->answer,
                                                    CallersOf(other->second->inTrace, emulated)));
    }
    std::set<const Asked*> unmatched;
    for (const auto& [key, asked] : others) {
        if (!own.contains(key)) unmatched.insert(asked);
    }
    for (const Asked& asked : right) {
        if (unmatched.contains(&asked))
            report.differences.push_back(
                With(asked, std::nullopt, asked.answer, CallersOf(asked.inTrace, emulated)));
    }
    report.calls = left.size();
}

std::optional<std::string> RecordAt(const std::vector<std::string>& log, size_t at) {
    return at < log.size() ? std::optional(log[at]) : std::nullopt;
}

// Both PCs are asked the same operations in the same order.
void CompareOperations(const PcAnswers& here, const PcAnswers& emulated, ConformanceReport& report) {
    for (size_t at = 0; at < here.operations.size(); ++at) {
        const OperationAnswer& left = here.operations[at];
        const OperationAnswer& right = emulated.operations[at];
        ConformanceDifference difference{
            .isOperation = true, .name = left.operation, .arguments = left.arguments};
        if (left.answer != right.answer) {
            difference.here = left.answer;
            difference.emulated = right.answer;
            report.differences.push_back(difference);
        }
        const auto differing = std::ranges::mismatch(left.log, right.log);
        if (differing.in1 == left.log.end() && differing.in2 == right.log.end()) continue;
        const auto record = static_cast<size_t>(differing.in1 - left.log.begin());
        difference.arguments +=
            (left.arguments.empty() ? "" : ", ") + ("log record " + std::to_string(record + 1));
        difference.here = RecordAt(left.log, record);
        difference.emulated = RecordAt(right.log, record);
        report.differences.push_back(difference);
    }
    report.operations = here.operations.size();
}

}  // namespace

size_t ConformanceReport::Unexpected() const {
    return static_cast<size_t>(
        std::ranges::count_if(differences, [](const auto& difference) { return !difference.expected; }));
}

ConformanceReport CompareAnswers(const PcAnswers& here, const PcAnswers& emulated) {
    ConformanceReport report;
    CompareOperations(here, emulated, report);
    CompareCalls(here, emulated, report);
    return report;
}

void NoteExpected(const ExpectedDifferences& expected, ConformanceReport& report) {
    std::set<const ExpectedDifference*> met;
    for (ConformanceDifference& difference : report.differences) {
        for (const ExpectedDifference& row : expected.rows) {
            if (!row.name.Matches(difference.name) || !row.arguments.Matches(difference.arguments)) continue;
            difference.expected = row.why;
            met.insert(&row);
            break;
        }
    }
    for (const ExpectedDifference& row : expected.rows) {
        if (!met.contains(&row))
            report.unmet.push_back(row.place + ": expected, but no difference: " + row.why);
    }
}
