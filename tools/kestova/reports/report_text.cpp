#include "tools/kestova/reports/report_text.h"

#include "tools/kestova/common/text.h"

namespace {

// The letters of a record: "C: disk 0, partition 2".
std::string RecordText(const Json& record) {
    return record["cDriveLetter"].get<std::string>() + ": disk " + record["iDiskNum"].dump() +
           ", partition " + record["iPartNum"].dump();
}

// Texts as they stand, lists in words, everything else as in JSON.
std::string Plain(const Json& value) {
    if (value.is_array()) {
        std::string text;
        for (const Json& record : value)
            text += (text.empty() ? "" : "; ") + RecordText(record);
        return text.empty() ? "none" : text;
    }
    if (!value.is_string()) return value.dump();
    const std::string& text = value.get_ref<const std::string&>();
    return text == std::string(1, '\0') ? "NUL" : text;
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
        return "  log " + entry["level"].dump() + "  " + OneLine(entry["text"].get<std::string>()) + "\n";
    }
    return "  " + entry["call"].get<std::string>() + "(" + OneLine(Joined(entry["arguments"])) +
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

const char* KindName(Kind kind) {
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

Json ParameterJson(const Parameter& parameter) {
    Json json = {{"name", parameter.name},
                 {"kind", KindName(parameter.kind)},
                 {"direction", parameter.output ? "out" : "in"},
                 {"words", parameter.words},
                 {"values", MeaningsJson(parameter.meanings)}};
    if (!parameter.standard.is_null()) json["default"] = parameter.standard;
    return json;
}

// "(0, 2) = C: its letter"; an operation without a result has nothing after its arguments.
std::string CallText(const Operation& operation, const Json& report) {
    std::string arguments = "(" + Joined(report["arguments"]) + ")";
    if (report["result"].is_null()) return arguments;
    return arguments + " = " + ValueText(report["result"], operation.results, operation.otherwise);
}

// What stands behind the words of an argument that may be left out.
std::string StandardText(const Parameter& parameter) {
    return parameter.standard.is_null() ? "" : "; " + parameter.standard.dump() + " when left out";
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
    std::string text = TraceText(report) + operation.name + CallText(operation, report) + "\n";
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
        text += "  " + parameter.name + (parameter.output ? " (output): " : ": ") + parameter.words +
                StandardText(parameter) + "\n" + Table(MeaningRows(parameter.meanings), "    ");
    }
    const std::string results = ResultsText(operation, "    ");
    return text + (results.empty() ? "  without a result\n" : "  result:\n" + results);
}

Json OperationJson(const Operation& operation) {
    Json parameters = Json::array();
    for (const Parameter& parameter : operation.parameters)
        parameters.push_back(ParameterJson(parameter));
    return {{"operation", operation.name},      {"summary", operation.summary},
            {"parameters", parameters},         {"results", MeaningsJson(operation.results)},
            {"otherwise", operation.otherwise}, {"changesPc", operation.changesPc}};
}
