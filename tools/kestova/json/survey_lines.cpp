#include "tools/kestova/json/survey_lines.h"

#include <algorithm>
#include <functional>
#include <set>

#include "tools/kestova/json/as_json.h"
#include "tools/kestova/json/json_values.h"
#include "tools/kestova/recording/json_line.h"

namespace {

bool HasTexts(const Json& json, std::initializer_list<const char*> keys) {
    return json.is_object() && std::ranges::all_of(keys, [&](const char* key) {
               return json.contains(key) && json[key].is_string();
           });
}

bool HasList(const Json& json, const char* key, std::initializer_list<const char*> keysOfEntries) {
    return json.contains(key) && json[key].is_array() &&
           std::ranges::all_of(json[key], [&](const Json& entry) { return HasTexts(entry, keysOfEntries); });
}

std::string ResultOf(const Json& operation) {
    const std::string result = operation.value("result", Json()).dump();
    const std::string meaning = operation["meaning"];
    return meaning.empty() ? result : result + ": " + meaning;
}

// Tabs separate the parts of a record.
std::string WithoutTabs(std::string text) {
    std::ranges::replace(text, '\t', ' ');
    return text;
}

void CompareKey(const Json& earlier, const Json& now, const char* key, const std::string& place,
                std::vector<std::string>& differences) {
    const Json none;
    const Json& before = earlier.contains(key) ? earlier[key] : none;
    const Json& after = now.contains(key) ? now[key] : none;
    if (before != after)
        differences.push_back(place + key + " " + after.dump() + " instead of " + before.dump());
}

}  // namespace

std::optional<std::string> PcOfLine(const std::string& line) {
    const Json json = ParsedLine(line);
    const bool isLine =
        HasTexts(json, {"pc", "name"}) && HasList(json, "operations", {"operation", "meaning"}) &&
        HasList(json, "records", {"text"}) && (!json.contains("error") || HasTexts(json, {"error"}));
    return isLine ? std::optional<std::string>(json["pc"]) : std::nullopt;
}

std::string LineOfWorker(const std::string& pc, const WorkerEnd& end) {
    if (end.problem.empty() && PcOfLine(end.answer) == pc) return end.answer;
    const std::string problem = end.problem.empty() ? "its worker answered with something else" : end.problem;
    return AsJson(SurveyedPc{.pc = pc, .error = problem});
}

std::vector<std::string> SurveyDifferences(const std::string& earlier, const std::string& now) {
    std::vector<std::string> differences;
    const Json before = ParsedLine(earlier);
    const Json after = ParsedLine(now);
    for (const char* const key : {"name", "status", "error"})
        CompareKey(before, after, key, "", differences);
    const Json& one = before["operations"];
    const Json& other = after["operations"];
    for (size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
        const std::string place = other[i]["operation"].get<std::string>() + ": ";
        for (const char* const key : {"operation", "arguments", "result", "outputs", "meaning", "problem"})
            CompareKey(one[i], other[i], key, place, differences);
    }
    if (one.size() != other.size())
        differences.push_back(Count(other.size(), "operation") + " instead of " + std::to_string(one.size()));
    for (const char* const key : {"records", "changes"})
        CompareKey(before, after, key, "", differences);
    return differences;
}

// A PC counts once, however often it has the record.
void SurveyTally::AddPc(Kinds& kinds, const std::string& kind, const std::string& pc) {
    constexpr size_t mostKinds = 10000;
    constexpr size_t shownPcs = 3;
    const bool isKept = kinds.size() < mostKinds || kinds.contains(kind);
    Pcs& pcs = kinds[isKept ? kind : "(others)"];
    ++pcs.count;
    if (pcs.first.size() < shownPcs) pcs.first.push_back(pc);
}

void SurveyTally::Add(const std::string& line) {
    const Json json = ParsedLine(line);
    const std::string pc = json["pc"];
    ++pcs_;
    for (const Json& operation : json["operations"]) {
        const std::string name = operation["operation"];
        if (!results_.contains(name)) operations_.push_back(name);
        ++results_[name][ResultOf(operation)];
    }
    std::set<std::string> texts;
    for (const Json& record : json["records"])
        texts.insert(WithoutTabs(record["text"]));
    for (const std::string& text : texts)
        AddPc(records_, text, pc);
    if (!json.contains("error")) return;
    ++errors_;
    std::string error = json["error"];
    if (error.starts_with(pc + ": ")) error.erase(0, pc.size() + 2);
    AddPc(errorsOfPcs_, error, pc);
}

std::string SurveyTally::TextOf(const Kinds& kinds) {
    std::vector<std::pair<std::string, Pcs>> sorted(kinds.begin(), kinds.end());
    std::ranges::stable_sort(sorted, std::greater(), [](const auto& kind) { return kind.second.count; });
    std::string lines;
    for (const auto& [text, pcs] : sorted) {
        lines += Table({{std::to_string(pcs.count), OneLine(text)}}, "  ") + "    " +
                 Joined(pcs.first, ", ") + (pcs.count > pcs.first.size() ? ", ...\n" : "\n");
    }
    return lines;
}

std::string SurveyTally::Text() const {
    std::string text = Count(pcs_, "PC") + ", " + std::to_string(errors_) + " without a whole answer\n";
    for (const std::string& operation : operations_) {
        std::vector<std::vector<std::string>> rows;
        for (const auto& [result, count] : results_.at(operation))
            rows.push_back({std::to_string(count), result});
        text += operation + "\n" + Table(rows, "  ");
    }
    if (!records_.empty()) text += "Records of errors\n" + TextOf(records_);
    if (!errorsOfPcs_.empty()) text += "Without a whole answer\n" + TextOf(errorsOfPcs_);
    return text;
}
