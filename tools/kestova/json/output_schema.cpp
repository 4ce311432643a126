#include "tools/kestova/json/output_schema.h"

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

// The words up to the next mark, which are taken off the text.
std::string_view TakeUpTo(char mark, std::string_view& text) {
    const size_t end = text.find(mark);
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return taken;
}

Json Types(std::string_view types) {
    Json names = Json::array();
    while (!types.empty())
        names.push_back(TakeUpTo('|', types));
    return names.size() == 1 ? names.front() : names;
}

// The schema of what is below a step of a path: of an object's key, or of the entries of its list.
Json& Below(Json& object, std::string_view step) {
    const bool isList = step.ends_with("[]");
    if (isList) step.remove_suffix(2);
    const bool isOptional = step.ends_with('?');
    if (isOptional) step.remove_suffix(1);
    if (!object.contains("properties")) {
        if (!object.contains("type")) object["type"] = "object";
        object["additionalProperties"] = false;
        object["required"] = Json::array();
        object["properties"] = Json::object();
    }
    const std::string name(step);
    if (!isOptional && !object["properties"].contains(name)) object["required"].push_back(name);
    Json& value = object["properties"][name];
    if (!isList) return value;
    value["type"] = "array";
    return value["items"];
}

void Add(const OutputKey& key, Json& schema) {
    Json* at = &schema;
    for (std::string_view path = key.path; !path.empty();) {
        const std::string_view step = TakeUpTo('.', path);
        at = &Below(*at, step);
        // An object in an object is null if there is nothing of the kind.
        if (!path.empty() && at->is_null() && !step.ends_with("[]")) (*at)["type"] = {"object", "null"};
    }
    (*at)["type"] = Types(key.type);
    (*at)["description"] = key.words;
}

}  // namespace

std::string OutputSchema(const CommandOutput& output) {
    constexpr int indent = 2;
    Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                   {"title", "kestova --json " + std::string(output.command)}};
    for (const OutputKeys keys : output.keys) {
        for (const OutputKey& key : keys)
            Add(key, schema);
    }
    return schema.dump(indent) + "\n";
}
