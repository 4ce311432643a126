// Operations with their log and trace, what the tool and the emulated PC come with, and what ends a command.

#include "base/utf.h"
#include "machine/calls/documented_results.h"
#include "machine/calls/result_codes.h"
#include "tools/kestova/json/as_json.h"
#include "tools/kestova/json/json_values.h"
#include "tools/kestova/reports/call_words.h"
#include "tools/kestova/reports/remarks.h"

static Json ToJson(const LogEntry& record) {
    return {{"level", record.level}, {"text", ToUtf8(record.Text())}};
}

static Json ToJson(const machine::CallRecord& call) {
    Json json = {{"call", call.call}, {"arguments", call.arguments}, {"result", call.result}};
    if (call.injected) json["injected"] = true;
    return json;
}

static Json ToJson(const Trace& trace) {
    Json json = Json::array();
    for (const machine::JournalEntry& entry : trace)
        json.push_back(std::visit([](const auto& happened) { return ToJson(happened); }, entry));
    return json;
}

static Json ToJson(const Meaning& meaning) {
    return {{"value", ToJson(meaning.value)},
            {"words", meaning.words},
            {"failure", meaning.after.advice != Advice::None},
            {"name", meaning.name}};
}

static Json ResultsAsJson(const std::vector<Meaning>& results) {
    Json json = Json::array();
    for (const Meaning& result : results) {
        json.push_back(ToJson(result));
        json.back()["advice"] = NameOf(result.after.advice);
        json.back()["remedy"] = result.after.remedy;
    }
    return json;
}

static const char* KindName(Kind kind) {
    switch (kind) {
        case Kind::Flag:
            return "flag";
        case Kind::Letter:
            return "letter";
        case Kind::Text:
            return "text";
        case Kind::List:
            return "list";
        default:
            return "number";
    }
}

static Json ToJson(const Parameter& parameter) {
    Json json = {{"name", parameter.name},
                 {"kind", KindName(parameter.kind)},
                 {"direction", parameter.output ? "out" : "in"},
                 {"words", parameter.words},
                 {"values", ListOf(parameter.meanings)}};
    if (!IsNothing(parameter.standard)) json["default"] = ToJson(parameter.standard);
    return json;
}

static Json ToJson(const Operation& operation) {
    return {{"operation", operation.name},
            {"summary", operation.summary},
            {"parameters", ListOf(operation.parameters)},
            {"results", ResultsAsJson(operation.results)},
            {"otherwise", operation.otherwise},
            {"changesPc", operation.changesPc},
            {"waits", operation.waits}};
}

static Json ToJson(const machine::NamedMachine& machine) {
    return {{"name", machine.name}, {"summary", machine.summary}};
}

static Json ToJson(const machine::CallInfo& call) {
    Json codes = Json::array();
    for (const uint32_t code : machine::ResultsOf(call.name).failures)
        codes.push_back({{"name", machine::CodeText(code, call.failsWith)}, {"code", code}});
    return {{"call", call.name},
            {"failsWith", FailureWords(call.failsWith)},
            {"changesPc", call.changesPc},
            {"codes", codes}};
}

static Json ToJson(const ValidationReport& report) {
    Json mistakes = Json::array();
    for (const machine::Mistake& mistake : report.mistakes)
        mistakes.push_back({{"line", mistake.line},
                            {"column", mistake.column},
                            {"place", mistake.place},
                            {"text", mistake.what}});
    return {{"file", report.file},
            {"problem", report.problem ? Json(*report.problem) : Json()},
            {"mistakes", mistakes}};
}

template <typename List>
static std::string Lines(const List& list) {
    std::string lines;
    for (const auto& element : list)
        lines += Line(ToJson(element));
    return lines;
}

static Json CallAsJson(const OperationReport& report) {
    return {{"operation", report.operation->name},
            {"arguments", ToJson(report.arguments)},
            {"result", report.stoppedBefore ? Json() : ToJson(report.result)},
            {"outputs", report.stoppedBefore ? Json::object() : ToJson(report.outputs)}};
}

std::string AsJson(const SurveyedPc& surveyed) {
    Json operations = Json::array();
    for (const OperationReport& report : surveyed.operations) {
        Json json = CallAsJson(report);
        json["meaning"] = ResultWords(report);
        AddProblem(report.problem, json);
        operations.push_back(json);
    }
    Json json = {{"pc", surveyed.pc},
                 {"name", surveyed.name},
                 {"status", ToJson(surveyed.status)},
                 {"operations", operations},
                 {"records", ListOf(surveyed.records)},
                 {"changes", surveyed.changes ? Json(*surveyed.changes) : Json::array()}};
    if (!surveyed.error.empty()) json["error"] = surveyed.error;
    return Line(json);
}

std::string AsJson(const OperationReport& report) {
    Json json = CallAsJson(report);
    json["log"] = ListOf(report.log);
    if (report.showsTrace) json["trace"] = ToJson(report.trace);
    if (!report.backups.empty()) json["backups"] = report.backups;
    if (!report.unwritten.empty()) json["written"] = false;
    AddProblem(report.problem, json);
    if (!report.reasons.empty()) json["reasons"] = ListOf(report.reasons);
    if (report.outcome != nullptr) json["outcome"] = report.outcome;
    if (report.changes) json["changes"] = *report.changes;
    AddRemarks(report.remarks, json);
    if (report.stoppedBefore) json["stoppedBefore"] = *report.stoppedBefore;
    return Line(json);
}

std::string ErrorAsJson(const std::string& message, int status) {
    return Line({{"error", message}, {"status", status}}, true);
}

std::string WithEnd(const std::string& line, const EndReport& end) {
    Json json = Json::parse(line);
    for (const FaultCount& fault : end.faults)
        json["faultsMet"].push_back({{"fault", fault.fault}, {"met", fault.met}});
    AddRemarks(UnmetFaults(end.faults), json);
    if (end.ledger) json["ledger"] = *end.ledger;
    return Line(json);
}

std::string AsJson(const std::vector<Operation>& operations) {
    return Lines(operations);
}

std::string AsJson(const std::vector<machine::NamedMachine>& machines) {
    return Lines(machines);
}

std::string AsJson(const ComparisonReport& report) {
    const auto side = [](const std::optional<std::string>& value) { return value ? Json(*value) : Json(); };
    Json differences = Json::array();
    for (const machine::Difference& difference : report.differences)
        differences.push_back({{"place", difference.place},
                               {"left", side(difference.left)},
                               {"right", side(difference.right)}});
    return Line({{"left", report.left}, {"right", report.right}, {"differences", differences}});
}

std::string AsJson(const std::vector<ValidationReport>& reports) {
    return Lines(reports);
}

std::string AsJson(std::span<const machine::CallInfo> calls) {
    return Lines(calls);
}
