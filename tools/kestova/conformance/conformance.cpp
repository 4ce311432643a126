#include "tools/kestova/conformance/conformance.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace {

// Which call it is: its name, its arguments, and the how many-th with these.
using CallKey = std::tuple<std::string, std::string, int>;

std::vector<CallKey> KeysOf(const std::vector<CallAnswer>& calls) {
    std::vector<CallKey> keys;
    std::map<std::pair<std::string, std::string>, int> count;
    for (const CallAnswer& call : calls)
        keys.emplace_back(call.call, call.arguments, ++count[{call.call, call.arguments}]);
    return keys;
}

std::vector<std::string> CallersOf(const CallAnswer& call, const PcAnswers& emulated) {
    const auto found = emulated.callers.find(call.inTrace);
    return found != emulated.callers.end() ? found->second : std::vector<std::string>();
}

// In the order in which the PC at hand was asked; what only the emulated one was asked comes last.
void CompareCalls(const PcAnswers& here, const PcAnswers& emulated, ConformanceReport& report) {
    const std::vector<CallKey> left = KeysOf(here.calls);
    const std::vector<CallKey> right = KeysOf(emulated.calls);
    std::map<CallKey, const CallAnswer*> unmatched;
    for (size_t at = 0; at < right.size(); ++at)
        unmatched[right[at]] = &emulated.calls[at];
    for (size_t at = 0; at < left.size(); ++at) {
        const CallAnswer& call = here.calls[at];
        ConformanceDifference difference{.name = call.call, .arguments = call.arguments, .here = call.answer};
        if (const auto other = unmatched.find(left[at]); other != unmatched.end()) {
            difference.emulated = other->second->answer;
            difference.operations = CallersOf(*other->second, emulated);
            unmatched.erase(other);
        }
        if (difference.here != difference.emulated) report.differences.push_back(std::move(difference));
    }
    for (size_t at = 0; at < right.size(); ++at) {
        const CallAnswer& call = emulated.calls[at];
        if (unmatched.contains(right[at])) {
            report.differences.push_back({.name = call.call,
                                          .arguments = call.arguments,
                                          .emulated = call.answer,
                                          .operations = CallersOf(call, emulated)});
        }
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

std::string Words(const OpenAnswer& answer) {
    return answer.value.empty() ? "unknown: " + answer.why : answer.value;
}

// Questions in the order of the PC at hand; the other may have met others, after an answer that was another.
void CompareOpenAnswers(const PcAnswers& here, const PcAnswers& emulated, ConformanceReport& report) {
    for (const OpenAnswer& answer : here.openAnswers) {
        const auto other = std::ranges::find(emulated.openAnswers, answer.question, &OpenAnswer::question);
        report.questions.push_back({answer.key, answer.question, Words(answer),
                                    other != emulated.openAnswers.end() ? Words(*other) : "not asked"});
    }
    report.left = here.left;
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
    CompareOpenAnswers(here, emulated, report);
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
