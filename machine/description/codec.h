// How values of the PC are read from JSON and written to it. A codec is a type without state:
//
//     using Value = ...;
//     static void Read(const Node& node, Value& value);
//     static void Write(Output out, const Value& value, const Value& standard);
//     static void Describe(Output out);
//
// Before Read, `value` holds the standard value, which applies where the description says nothing; `standard`
// is the same value when writing. Only records need it, for the keys that they leave out. Describe writes the
// JSON Schema of what Read takes.
#pragma once

#include <optional>
#include <vector>

#include "machine/description/node.h"
#include "machine/description/output.h"
#include "machine/description/schema.h"
#include "machine/facts/pc.h"

namespace machine::description {

// null, or the value.
template <typename Codec>
struct OrNull {
    using Value = std::optional<typename Codec::Value>;

    static void Read(const Node& node, Value& value) {
        if (node.IsNull()) return value.reset();
        if (!value) value.emplace();
        Codec::Read(node, *value);
    }
    static void Write(Output out, const Value& value, const Value& standard) {
        if (!value) return out.Null();
        Codec::Write(out, *value, standard.value_or(typename Codec::Value()));
    }
    static void Describe(Output out) {
        const Output values = schema::AnyOf(out);
        schema::Null(values.Entry());
        Codec::Describe(values.Entry());
    }
};

// The value, or {"error": 13} if asking for it fails.
template <typename Codec, typename ErrorCodec>
struct OrError {
    using Value = Fact<typename Codec::Value>;

    static void Read(const Node& node, Value& fact) {
        if (node.Has("error")) {
            node.ExpectKeys({"error"});
            fact.value.reset();
            ErrorCodec::Read(node.Key("error"), fact.error);
        } else {
            if (!fact.value) fact.value.emplace();
            Codec::Read(node, *fact.value);
            fact.error = 0;
        }
    }
    static void Write(Output out, const Value& fact, const Value& standard) {
        if (fact.value)
            return Codec::Write(out, *fact.value, standard.value.value_or(typename Codec::Value()));
        out.Object();
        ErrorCodec::Write(out.Key("error"), fact.error, 0);
    }
    static void Describe(Output out) {
        const Output values = schema::AnyOf(out);
        Codec::Describe(values.Entry());
        const Output error = values.Entry();
        ErrorCodec::Describe(schema::Object(error).Key("error"));
        schema::RequireKey(error, "error");
    }
};

template <typename Codec>
struct ListOf {
    using Value = std::vector<typename Codec::Value>;

    static void Read(const Node& node, Value& list) {
        node.ExpectList();
        list.clear();
        for (size_t index = 0; index < node.Size(); ++index)
            node.Try([&] { Codec::Read(node.Entry(index), list.emplace_back()); });
    }
    static void Write(Output out, const Value& list, const Value&) {
        out.List();
        for (const auto& entry : list)
            Codec::Write(out.Entry(), entry, typename Codec::Value());
    }
    static void Describe(Output out) { Codec::Describe(schema::List(out)); }
};

}  // namespace machine::description
