// Registry keys as JSON: an object with a key for each path, containing an object with a key for each
// value.

#include <map>

#include "base/text_case.h"
#include "machine/description/values.h"

namespace machine::description {

namespace {

constexpr Named valueTypes[] = {{"REG_NONE", 0},   {"REG_SZ", 1},    {"REG_EXPAND_SZ", 2},
                                {"REG_BINARY", 3}, {"REG_DWORD", 4}, {"REG_MULTI_SZ", 7},
                                {"REG_QWORD", 11}};
constexpr uint32_t regSz = 1;
using ValueType = WordOrNumber<uint32_t, valueTypes>;

RegistryValue ReadValue(const Node& node) {
    if (!node.IsObject()) return {regSz, node.Content()};
    node.ExpectKeys({"type", "hex"});
    for (const char* const key : {"type", "hex"}) {
        if (!node.Has(key)) node.Fail("the key \"" + std::string(key) + "\" is missing");
    }
    RegistryValue value;
    ValueType::Read(node.Key("type"), value.type);
    HexBytes::Read(node.Key("hex"), value.data);
    return value;
}

void WriteValue(Output out, const RegistryValue& value) {
    if (value.type == regSz && IsJsonText(value.data)) return out.Text(value.data);
    out.Object();
    ValueType::Write(out.Key("type"), value.type, regSz);
    HexBytes::Write(out.Key("hex"), value.data, {});
}

// Reads the entries of an object by name; fails for two names that differ only in case.
template <typename Entry, typename Read>
std::map<std::string, Entry> ReadByName(const Node& node, Read read) {
    node.ExpectObject();
    std::map<std::string, Entry> entries;
    std::map<std::string, std::string> names;  // by upper-case name
    for (const auto& [key, entry] : node.Members()) {
        const auto [known, isNew] = names.try_emplace(UpperCase(key), key);
        if (!isNew) entry.Report("stands here already as \"" + known->second + "\"");
        node.Try([&, &key = key, &entry = entry] { entries[key] = read(entry); });
    }
    return entries;
}

}  // namespace

void Registry::Read(const Node& node, RegistryKeys& keys) {
    keys = ReadByName<std::map<std::string, RegistryValue>>(
        node, [](const Node& key) { return ReadByName<RegistryValue>(key, ReadValue); });
}

void Registry::Write(Output out, const RegistryKeys& keys, const RegistryKeys&) {
    out.Object();
    for (const auto& [path, values] : keys) {
        const Output key = out.Key(path);
        key.Object();
        for (const auto& [name, value] : values)
            WriteValue(key.Key(name), value);
    }
}

void Registry::Describe(Output out) {
    const Output values = schema::AnyOf(schema::Map(schema::Map(out)));
    Text::Describe(values.Entry());
    HexBytes::DescribeObject(values.Entry(), ValueType::Describe);
}

}  // namespace machine::description
