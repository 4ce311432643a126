#include "tools/kestova/conformance/conformance_tables.h"

#include "tools/kestova/common/display_width.h"
#include "tools/kestova/common/text.h"

namespace {

// Whether both PCs were asked.
bool IsOfBoth(const ConformanceDifference& difference) {
    return difference.here && difference.emulated;
}

std::string Shown(const std::string& answer, const std::string& other, LongAnswers answers) {
    return answers == LongAnswers::Cut ? CutAroundDifference(answer, other) : answer;
}

ConformanceTable Differing(const ConformanceReport& report, bool isExpected, LongAnswers answers) {
    ConformanceTable table{.title = isExpected ? "Expected differences" : "Differences",
                           .columns = {"Call", "Arguments", report.here, report.emulated,
                                       isExpected ? "Known because" : "Operations"}};
    for (const ConformanceDifference& difference : report.differences) {
        const auto& [isOperation, name, arguments, here, emulated, operations, expected] = difference;
        if (!IsOfBoth(difference) || expected.has_value() != isExpected) continue;
        table.rows.push_back({name, arguments, Shown(*here, *emulated, answers),
                              Shown(*emulated, *here, answers), expected.value_or(Joined(operations, ", "))});
    }
    return table;
}

// What one PC was asked for something that the other one lacks: a disk, a letter, a longer list.
ConformanceTable OfOneOnly(const ConformanceReport& report, const std::string& name,
                           std::optional<std::string> ConformanceDifference::*answer, LongAnswers answers) {
    ConformanceTable table{.title = "Only " + name + " was asked",
                           .columns = {"Call", "Arguments", "Answer"}};
    for (const ConformanceDifference& difference : report.differences) {
        if (!IsOfBoth(difference) && difference.*answer)
            table.rows.push_back(
                {difference.name, difference.arguments, Shown(*(difference.*answer), "", answers)});
    }
    return table;
}

ConformanceTable Questions(const ConformanceReport& report) {
    ConformanceTable table{.title = "What the documents leave open",
                           .columns = {"Question", report.here, report.emulated, "Switch of a description"}};
    for (const auto& [key, question, here, emulated] : report.questions)
        table.rows.push_back({question, here, emulated, key});
    return table;
}

}  // namespace

std::vector<ConformanceTable> TablesOf(const ConformanceReport& report, LongAnswers answers) {
    std::vector<ConformanceTable> tables = {
        Differing(report, false, answers),
        OfOneOnly(report, report.here, &ConformanceDifference::here, answers),
        OfOneOnly(report, report.emulated, &ConformanceDifference::emulated, answers),
        Differing(report, true, answers),
        Questions(report),
    };
    std::erase_if(tables, [](const ConformanceTable& table) { return table.rows.empty(); });
    return tables;
}

std::string NotAskedWords(const ConformanceReport& report) {
    return "Not asked, since they change the first internal disk or write files: " +
           Joined(report.notAsked, ", ") + ".";
}

std::string CountWords(const ConformanceReport& report) {
    const size_t expected = report.differences.size() - report.Unexpected();
    return Count(report.operations, "operation") + " and " + Count(report.calls, "call") + " compared: " +
           (report.Unexpected() == 0 ? "no differences" : Count(report.Unexpected(), "difference")) +
           (expected == 0 ? "" : ", " + std::to_string(expected) + " expected");
}
