// Records of the PC as JSON objects: a table of fields, each with its key, its member and its codec.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "machine/description/node.h"
#include "machine/description/output.h"
#include "machine/description/schema.h"

namespace machine::description {

template <typename Record>
struct RecordType;

// How one member of a record is read and written.
template <typename Record>
struct Access {
    void (*read)(const Node& node, Record& record);
    void (*write)(Output out, const Record& record, const Record& standard);
    bool (*isStandard)(const Record& record, const Record& standard);
    void (*describe)(Output out);
};

// For decltype only: the record of a member, and that of a type.
template <typename Record, typename Value>
Record RecordWith(Value Record::*member);
template <typename Record>
Record RecordIn(const RecordType<Record>& type);

// Reads and writes a member of a record with a codec.
template <auto pointer, typename Codec, typename Record = decltype(RecordWith(pointer))>
constexpr Access<Record> member = {
    [](const Node& node, Record& record) { Codec::Read(node, record.*pointer); },
    [](Output out, const Record& record, const Record& standard) {
        Codec::Write(out, record.*pointer, standard.*pointer);
    },
    [](const Record& record, const Record& standard) { return record.*pointer == standard.*pointer; },
    Codec::Describe,
};

// An optional key is not written when its value equals the standard.
enum class Presence { Required, Optional };

// A fact that a disk image supplies: its key is refused in the description of a record on an image.
constexpr bool fromImage = true;

struct Key {
    std::string_view name;
    std::string_view words;
    Presence presence;
    bool suppliedByImage;
};

// Fails unless the value is an object; reports keys other than these, those supplied by an image, and
// required ones that are missing.
void ExpectKeys(const std::vector<Key>& keys, bool onImage, const Node& node);

template <typename Record>
struct Field {
    std::string_view key;
    std::string_view words;  // what it means, for the schema
    Presence presence;
    Access<Record> access;
    bool suppliedByImage = false;
};

template <typename Record>
struct RecordType {
    std::span<const Field<Record>> fields;
    bool onImage = false;
    // The defaults of the other fields depend on the first `leading` ones: `standard` makes them, given a
    // record in which only those are set.
    size_t leading = 0;
    Record (*standard)(const Record& leading) = nullptr;

    constexpr RecordType OnImage() const {
        RecordType type = *this;
        type.onImage = true;
        return type;
    }
    std::vector<Key> Keys() const {
        std::vector<Key> keys;
        for (const Field<Record>& field : fields)
            keys.push_back({field.key, field.words, field.presence, field.suppliedByImage});
        return keys;
    }
};

template <typename Record>
void ReadRecord(const RecordType<Record>& type, const Node& node, Record& record) {
    ExpectKeys(type.Keys(), type.onImage, node);
    for (size_t index = 0; index < type.fields.size(); ++index) {
        if (index == type.leading && type.standard != nullptr) record = type.standard(record);
        const Field<Record>& field = type.fields[index];
        if (!node.Has(field.key)) continue;
        node.Try([&] { field.access.read(node.Key(field.key), record); });
    }
}

template <typename Record>
void WriteRecord(const RecordType<Record>& type, Output out, const Record& record, Record standard) {
    out.Object();
    for (size_t index = 0; index < type.fields.size(); ++index) {
        if (index == type.leading && type.standard != nullptr) standard = type.standard(record);
        const Field<Record>& field = type.fields[index];
        const bool supplied = type.onImage && field.suppliedByImage;
        const bool leftOut = !out.IsWhole() && field.presence == Presence::Optional &&
                             field.access.isStandard(record, standard);
        if (!supplied && !leftOut) field.access.write(out.Key(field.key), record, standard);
    }
}

template <typename Record>
void DescribeRecord(const RecordType<Record>& type, Output out) {
    const Output properties = schema::Object(out);
    const auto isSupplied = [&](const Field<Record>& field) { return type.onImage && field.suppliedByImage; };
    for (const Field<Record>& field : type.fields) {
        if (isSupplied(field)) continue;
        const Output described = properties.Key(field.key);
        field.access.describe(described);
        described.Key("description").Text(std::string(field.words));
    }
    for (const Field<Record>& field : type.fields) {
        if (!isSupplied(field) && field.presence == Presence::Required) schema::RequireKey(out, field.key);
    }
}

// The codec of a record.
template <const auto& type>
struct RecordOf {
    using Value = decltype(RecordIn(type));

    static void Read(const Node& node, Value& record) { ReadRecord(type, node, record); }
    static void Write(Output out, const Value& record, const Value& standard) {
        WriteRecord(type, out, record, standard);
    }
    static void Describe(Output out) { DescribeRecord(type, out); }
};

// The codec of a record that is on an image if its description names one.
template <const auto& type, const auto& typeOnImage>
struct RecordOrImage {
    using Value = decltype(RecordIn(type));

    static void Read(const Node& node, Value& record) {
        const bool onImage = node.Has("image");
        if (onImage && node.Key("image").Text().empty()) node.Key("image").Fail("must name a file");
        ReadRecord(onImage ? typeOnImage : type, node, record);
    }
    static void Write(Output out, const Value& record, const Value& standard) {
        WriteRecord(record.image.empty() ? type : typeOnImage, out, record, standard);
    }
    static void Describe(Output out) {
        const Output values = schema::AnyOf(out);
        const Output described = values.Entry();
        DescribeRecord(type, described);
        schema::ForbidKey(described, "image");
        DescribeRecord(typeOnImage, values.Entry());
    }
};

}  // namespace machine::description
