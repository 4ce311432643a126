// Where two PCs answer differently.

#include "tools/kestova/json/as_json.h"
#include "tools/kestova/json/json_values.h"

static Json Side(const std::optional<std::string>& text) {
    return text ? Json(*text) : Json();
}

static Json ToJson(const ConformanceDifference& difference) {
    return {{"kind", difference.isOperation ? "operation" : "call"},
            {"name", difference.name},
            {"arguments", difference.arguments},
            {"here", Side(difference.here)},
            {"emulated", Side(difference.emulated)},
            {"operations", difference.operations},
            {"expected", Side(difference.expected)}};
}

static Json ToJson(const OpenQuestion& question) {
    return {{"switch", question.key},
            {"question", question.question},
            {"here", question.here},
            {"emulated", question.emulated}};
}

std::string AsJson(const ConformanceReport& report) {
    return Line({{"here", report.here},
                 {"emulated", report.emulated},
                 {"operations", report.operations},
                 {"calls", report.calls},
                 {"differences", ListOf(report.differences)},
                 {"unexpected", report.Unexpected()},
                 {"unmet", report.unmet},
                 {"questions", ListOf(report.questions)},
                 {"left", report.left},
                 {"notAsked", report.notAsked}});
}
