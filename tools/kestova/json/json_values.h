// What the sources of this folder write JSON with. nlohmann-json is included by them alone.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operation_report.h"

// Keys keep the order in which they were written.
using Json = nlohmann::ordered_json;

// The object on a line of its own. What a terminal would obey is escaped as JSON does it, which reads as the
// same text.
inline std::string Line(const Json& json, bool inAscii = false) {
    return Printable(json.dump(-1, ' ', inAscii, Json::error_handler_t::replace)) + "\n";
}

inline Json ToJson(bool flag) {
    return flag;
}

inline Json ToJson(int number) {
    return number;
}

inline Json ToJson(uint64_t number) {
    return number;
}

inline Json ToJson(int64_t number) {
    return number;
}

inline Json ToJson(const std::string& text) {
    return text;
}

inline Json ToJson(WCHAR letter) {
    return LetterText(letter);
}

inline Json ToJson(const Finding& finding) {
    return {{"code", finding.code}, {"text", finding.text}};
}

// Arguments and outputs by name, and a single value.
Json ToJson(const Values& values);
Json ToJson(const Value& value);

// Of a structure of a report the two below find the function ToJson by its argument, for which it is static,
// not in an unnamed namespace.

// null for nothing.
template <typename T>
Json ToJson(const std::optional<T>& value) {
    return value ? ToJson(*value) : Json();
}

template <typename List>
Json ListOf(const List& elements) {
    Json json = Json::array();
    for (const auto& element : elements)
        json.push_back(ToJson(element));
    return json;
}

// The key "problem", if there is one.
inline void AddProblem(const std::string& problem, Json& json) {
    if (!problem.empty()) json["problem"] = problem;
}

// The key "remarks", if there are any.
inline void AddRemarks(const std::vector<Finding>& remarks, Json& json) {
    for (const Finding& remark : remarks)
        json["remarks"].push_back(ToJson(remark));
}
