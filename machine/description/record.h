// Records of the PC as JSON objects: a table of fields, each with its key, its place in the record and its
// codec.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "machine/description/codec.h"

namespace machine::description {

template <typename Record>
struct Field {
    std::string key;
    bool required;
    std::function<void(Record& record, const Node& node)> read;
    // Nothing, if it may be left out because it equals the standard.
    std::function<std::optional<Json>(const Record& record, const Record& standard)> write;
};

template <typename Record, typename T>
Field<Record> Required(std::string key, T Record::*member, Codec<std::type_identity_t<T>> codec) {
    return {std::move(key), true,
            [=](Record& record, const Node& node) { record.*member = codec.read(node, record.*member); },
            [=](const Record& record, const Record& standard) -> std::optional<Json> {
                return codec.write(record.*member, standard.*member);
            }};
}

template <typename Record, typename T>
Field<Record> Optional(std::string key, T Record::*member, Codec<std::type_identity_t<T>> codec) {
    Field<Record> field = Required(std::move(key), member, std::move(codec));
    field.required = false;
    field.write = [member, write = field.write](const Record& record, const Record& standard) {
        return record.*member == standard.*member ? std::nullopt : write(record, standard);
    };
    return field;
}

template <typename Record>
struct RecordType {
    std::vector<Field<Record>> fields;
    // Fields, among those above the first ones, on which defaults of the others depend, and those defaults: a
    // record that knows nothing but its leading fields.
    size_t leading = 0;
    Record (*standard)(const Record& leading) = nullptr;
    // Keys that do not stand here because the disk image tells them.
    std::vector<std::string> toldByImage = {};

    std::vector<std::string> Keys() const {
        std::vector<std::string> keys;
        for (const Field<Record>& field : fields)
            keys.push_back(field.key);
        return keys;
    }
};

template <typename Record>
void ExpectKeysOf(const RecordType<Record>& type, const Node& node) {
    node.ExpectObject();
    for (const std::string& key : type.toldByImage) {
        if (node.Value().contains(key)) node.Key(key).Fail("not beside an image, which tells it");
    }
    node.ExpectKeys(type.Keys());
    for (const Field<Record>& field : type.fields) {
        if (field.required && !node.Value().contains(field.key))
            node.Fail("the key \"" + field.key + "\" is missing");
    }
}

template <typename Record>
Record ReadRecord(const RecordType<Record>& type, const Node& node, Record record) {
    ExpectKeysOf(type, node);
    for (size_t index = 0; index < type.fields.size(); ++index) {
        if (index == type.leading && type.standard != nullptr) record = type.standard(record);
        const Field<Record>& field = type.fields[index];
        if (node.Value().contains(field.key)) field.read(record, node.Key(field.key));
    }
    return record;
}

template <typename Record>
Json WriteRecord(const RecordType<Record>& type, const Record& record, Record standard) {
    Json object = Json::object();
    for (size_t index = 0; index < type.fields.size(); ++index) {
        if (index == type.leading && type.standard != nullptr) standard = type.standard(record);
        const Field<Record>& field = type.fields[index];
        if (std::optional<Json> value = field.write(record, standard)) object[field.key] = std::move(*value);
    }
    return object;
}

// The type must live as long as the codec; a temporary does not compile.
template <typename Record>
Codec<Record> RecordOf(const RecordType<Record>& type) {
    return {[&type](const Node& node, const Record& standard) { return ReadRecord(type, node, standard); },
            [&type](const Record& record, const Record& standard) {
                return WriteRecord(type, record, standard);
            }};
}
template <typename Record>
Codec<Record> RecordOf(RecordType<Record>&& type) = delete;

}  // namespace machine::description
