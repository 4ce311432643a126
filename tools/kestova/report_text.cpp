#include "tools/kestova/report_text.h"

#include "tools/kestova/text.h"

namespace {

// Texts as they stand, everything else as in JSON.
std::string Plain(const Json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string Joined(const Json& values) {
    std::string text;
    for (const Json& value : values)
        text += (text.empty() ? "" : ", ") + Plain(value);
    return text;
}

std::string ValueText(const Json& value, const std::vector<Meaning>& meanings, const char* otherwise) {
    const Meaning* const meaning = FindMeaning(meanings, value);
    const std::string words = meaning != nullptr ? meaning->words : otherwise;
    return Plain(value) + (words.empty() ? "" : ": " + words);
}

std::string TraceLine(const Json& entry) {
    if (entry.contains("text")) {
        return "  log " + entry["level"].dump() + "  " + entry["text"].get<std::string>() + "\n";
    }
    return "  " + entry["call"].get<std::string>() + "(" + Joined(entry["arguments"]) +
           ") = " + entry["result"].get<std::string>() + (entry.contains("injected") ? "  (injected)" : "") +
           "\n";
}

Json MeaningsJson(const std::vector<Meaning>& meanings) {
    Json json = Json::array();
    for (const Meaning& meaning : meanings) {
        json.push_back({{"value", meaning.value}, {"words", meaning.words}, {"failure", meaning.failure}});
    }
    return json;
}

Json ParameterJson(const Parameter& parameter) {
    return {{"name", parameter.name},
            {"kind", parameter.kind == Kind::Flag ? "flag" : "number"},
            {"direction", parameter.output ? "out" : "in"},
            {"words", parameter.words},
            {"values", MeaningsJson(parameter.meanings)}};
}

std::vector<std::vector<std::string>> MeaningRows(const std::vector<Meaning>& meanings) {
    std::vector<std::vector<std::string>> rows;
    for (const Meaning& meaning : meanings)
        rows.push_back({Plain(meaning.value), meaning.words});
    return rows;
}

}  // namespace

std::string TraceText(const Json& report) {
    std::string text;
    if (!report.contains("trace")) return text;
    for (const Json& entry : report["trace"])
        text += TraceLine(entry);
    return text;
}

std::string ReportText(const Operation& operation, const Json& report) {
    std::string text = TraceText(report) + operation.name + "(" + Joined(report["arguments"]) +
                       ") = " + ValueText(report["result"], operation.results, operation.otherwise) + "\n";
    for (const Parameter& parameter : operation.parameters) {
        if (!parameter.output) continue;
        text += "  " + parameter.name + " = " +
                ValueText(report["outputs"][parameter.name], parameter.meanings, "") + "\n";
    }
    return text;
}

std::string ResultsText(const Operation& operation, const std::string& indent) {
    auto rows = MeaningRows(operation.results);
    if (*operation.otherwise != '\0') rows.push_back({"else", operation.otherwise});
    return Table(rows, indent);
}

std::string OperationText(const Operation& operation) {
    std::string text = Usage(operation) + "\n  " + operation.summary + "\n";
    for (const Parameter& parameter : operation.parameters) {
        text += "  " + parameter.name + (parameter.output ? " (output): " : ": ") + parameter.words + "\n" +
                Table(MeaningRows(parameter.meanings), "    ");
    }
    return text + "  result:\n" + ResultsText(operation, "    ");
}

Json OperationJson(const Operation& operation) {
    Json parameters = Json::array();
    for (const Parameter& parameter : operation.parameters)
        parameters.push_back(ParameterJson(parameter));
    return {{"operation", operation.name},      {"summary", operation.summary},
            {"parameters", parameters},         {"results", MeaningsJson(operation.results)},
            {"otherwise", operation.otherwise}, {"changesPc", operation.changesPc}};
}
