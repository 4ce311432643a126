#include "machine/description/schema.h"

#include <string>

namespace machine::description::schema {

void Text(Output out, std::string_view pattern) {
    out.Object();
    out.Key("type").Text("string");
    if (!pattern.empty()) out.Key("pattern").Text(std::string(pattern));
}

void Flag(Output out) {
    out.Object();
    out.Key("type").Text("boolean");
}

void Null(Output out) {
    out.Object();
    out.Key("type").Text("null");
}

void Number(Output out, int64_t least, uint64_t most, std::string_view pattern) {
    out.Object();
    const Output types = out.Key("type");
    types.List();
    types.Entry().Text("integer");
    types.Entry().Text("string");
    if (least < 0) {
        out.Key("minimum").NegativeNumber(least);
    } else {
        out.Key("minimum").Number(static_cast<uint64_t>(least));
    }
    out.Key("maximum").Number(most);
    out.Key("pattern").Text(std::string(pattern));
}

Output Object(Output out) {
    out.Object();
    out.Key("type").Text("object");
    out.Key("additionalProperties").Flag(false);
    out.Key("required").List();
    const Output properties = out.Key("properties");
    properties.Object();
    return properties;
}

void RequireKey(Output out, std::string_view key) {
    out.Key("required").Entry().Text(std::string(key));
}

void ForbidKey(Output out, std::string_view key) {
    const Output forbidden = out.Key("not");
    forbidden.Object();
    const Output keys = forbidden.Key("required");
    keys.List();
    keys.Entry().Text(std::string(key));
}

Output Map(Output out) {
    out.Object();
    out.Key("type").Text("object");
    return out.Key("additionalProperties");
}

Output List(Output out) {
    out.Object();
    out.Key("type").Text("array");
    return out.Key("items");
}

Output AnyOf(Output out) {
    out.Object();
    const Output values = out.Key("anyOf");
    values.List();
    return values;
}

}  // namespace machine::description::schema
