#include "tools/kestova/json/json_values.h"

static Json ToJson(std::monostate) {
    return nullptr;
}

static Json ToJson(const DriveRecord& record) {
    return {{"iDiskNum", record.disk}, {"iPartNum", record.partition}, {"cDriveLetter", record.letter}};
}

static Json ToJson(const std::vector<DriveRecord>& records) {
    return ListOf(records);
}

Json ToJson(const Value& value) {
    return std::visit([](const auto& held) { return ToJson(held); }, value);
}

Json ToJson(const Values& values) {
    Json json = Json::object();
    for (const auto& [name, value] : values)
        json[name] = ToJson(value);
    return json;
}
