#include "tools/kestova/conformance/conformance_text.h"

#include "tools/kestova/common/display_width.h"
#include "tools/kestova/common/fitted_table.h"
#include "tools/kestova/common/text.h"

namespace {

constexpr size_t leastWidth = 12;

// Whether both PCs were asked.
bool IsOfBoth(const ConformanceDifference& difference) {
    return difference.here && difference.emulated;
}

std::string Differing(const ConformanceReport& report, bool isExpected, const Terminal& terminal) {
    std::vector<std::vector<Cell>> rows;
    for (const ConformanceDifference& difference : report.differences) {
        const auto& [isOperation, name, arguments, here, emulated, operations, expected] = difference;
        if (IsOfBoth(difference) && expected.has_value() == isExpected)
            rows.push_back({{name},
                            {arguments},
                            {CutAroundDifference(*here, *emulated)},
                            {CutAroundDifference(*emulated, *here)},
                            {expected.value_or(Joined(operations, ", "))}});
    }
    if (rows.empty()) return "";
    const std::vector<TableColumn> columns = {{"Call", leastWidth},
                                              {"Arguments", leastWidth},
                                              {report.here, leastWidth},
                                              {report.emulated, leastWidth},
                                              {isExpected ? "Known because" : "Operations"}};
    return std::string(isExpected ? "Expected differences:\n" : "Differences:\n") +
           FittedTable(columns, std::move(rows), terminal) + "\n";
}

// What one PC was asked for something that the other one lacks: a disk, a letter, a longer list.
std::string OfOneOnly(const ConformanceReport& report, const std::string& name,
                      std::optional<std::string> ConformanceDifference::*answer, const Terminal& terminal) {
    std::vector<std::vector<Cell>> rows;
    for (const ConformanceDifference& difference : report.differences) {
        if (!IsOfBoth(difference) && difference.*answer)
            rows.push_back({{difference.name},
                            {difference.arguments},
                            {CutAroundDifference(*(difference.*answer), "")}});
    }
    if (rows.empty()) return "";
    return "Only " + name + " was asked:\n" +
           FittedTable({{"Call", leastWidth}, {"Arguments", leastWidth}, {"Answer"}}, std::move(rows),
                       terminal) +
           "\n";
}

std::string Questions(const ConformanceReport& report, const Terminal& terminal) {
    if (report.questions.empty()) return "";
    std::vector<std::vector<Cell>> rows;
    for (const auto& [key, question, here, emulated] : report.questions)
        rows.push_back({{question}, {here}, {emulated}, {key}});
    return "What the documents leave open:\n" +
           FittedTable({{"Question", leastWidth},
                        {report.here, leastWidth},
                        {report.emulated, leastWidth},
                        {"Switch of a description"}},
                       std::move(rows), terminal) +
           "\n";
}

}  // namespace

std::string ConformanceText(const ConformanceReport& report, const Terminal& terminal) {
    const size_t expected = report.differences.size() - report.Unexpected();
    return Differing(report, false, terminal) +
           OfOneOnly(report, report.here, &ConformanceDifference::here, terminal) +
           OfOneOnly(report, report.emulated, &ConformanceDifference::emulated, terminal) +
           Differing(report, true, terminal) + Questions(report, terminal) +
           Count(report.operations, "operation") + " and " + Count(report.calls, "call") + " compared: " +
           (report.Unexpected() == 0 ? "no differences" : Count(report.Unexpected(), "difference")) +
           (expected == 0 ? "" : ", " + std::to_string(expected) + " expected") + "\n";
}
