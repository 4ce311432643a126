// Registry keys as JSON: an object with a key for each path, in it one for each value.

#include <algorithm>

#include "machine/description/values.h"

namespace machine::description {

namespace {

const Words<uint32_t> valueTypes = {{"REG_NONE", 0},   {"REG_SZ", 1},    {"REG_EXPAND_SZ", 2},
                                    {"REG_BINARY", 3}, {"REG_DWORD", 4}, {"REG_MULTI_SZ", 7},
                                    {"REG_QWORD", 11}};
constexpr uint32_t regSz = 1;

RegistryValue ReadValue(const Node& node) {
    if (!node.Value().is_object()) return {regSz, node.Text()};
    node.ExpectKeys({"type", "hex"});
    for (const char* const key : {"type", "hex"}) {
        if (!node.Value().contains(key)) node.Fail("the key \"" + std::string(key) + "\" is missing");
    }
    return {WordOrNumber(valueTypes).read(node.Key("type"), 0), HexBytes().read(node.Key("hex"), {})};
}

Json WriteValue(const RegistryValue& value) {
    if (value.type == regSz && IsJsonText(value.data)) return value.data;
    Json object = Json::object();
    object["type"] = WordOrNumber(valueTypes).write(value.type, 0);
    object["hex"] = HexBytes().write(value.data, {});
    return object;
}

bool SameName(const std::string& left, const std::string& right) {
    const auto lower = [](char unit) { return unit >= 'A' && unit <= 'Z' ? unit - 'A' + 'a' : unit; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char one, char other) { return lower(one) == lower(other); });
}

// The entries of an object by name; fails for two names that differ only in case.
template <typename Entry, typename Read>
std::map<std::string, Entry> ReadByName(const Node& node, Read read) {
    node.ExpectObject();
    std::map<std::string, Entry> entries;
    for (const auto& item : node.Value().items()) {
        const Node entry = node.Key(item.key());
        for (const auto& [name, other] : entries) {
            if (SameName(name, item.key())) entry.Fail("stands here already as \"" + name + "\"");
        }
        entries[item.key()] = read(entry);
    }
    return entries;
}

RegistryKeys ReadKeys(const Node& node) {
    return ReadByName<std::map<std::string, RegistryValue>>(
        node, [](const Node& key) { return ReadByName<RegistryValue>(key, ReadValue); });
}

Json WriteKeys(const RegistryKeys& keys) {
    Json object = Json::object();
    for (const auto& [path, values] : keys) {
        Json& key = object[path] = Json::object();
        for (const auto& [name, value] : values)
            key[name] = WriteValue(value);
    }
    return object;
}

}  // namespace

Codec<RegistryKeys> Registry() {
    return PlainCodec<RegistryKeys>(ReadKeys, WriteKeys);
}

}  // namespace machine::description
