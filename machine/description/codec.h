// How values of the PC stand in JSON. A codec goes both ways, so whatever can be read can be written.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "machine/description/node.h"

namespace machine::description {

// `standard` is the value that holds where the description says nothing; only records need it, for the keys
// that they leave out.
template <typename T>
struct Codec {
    std::function<T(const Node& node, const T& standard)> read;
    std::function<Json(const T& value, const T& standard)> write;
};

// A codec that needs no standard value.
template <typename T>
Codec<T> PlainCodec(std::function<T(const Node&)> read, std::function<Json(const T&)> write) {
    return {[read](const Node& node, const T&) { return read(node); },
            [write](const T& value, const T&) { return write(value); }};
}

// null, or the value.
template <typename T>
Codec<std::optional<T>> OrNull(Codec<T> codec) {
    using Value = std::optional<T>;
    return {[codec](const Node& node, const Value& standard) {
                if (node.Value().is_null()) return Value();
                return Value(codec.read(node, standard.value_or(T())));
            },
            [codec](const Value& value, const Value& standard) {
                return value ? codec.write(*value, standard.value_or(T())) : Json();
            }};
}

// The value, or {"error": 13} where asking for it fails.
template <typename T>
Codec<Fact<T>> OrError(Codec<T> codec, const Codec<uint32_t>& error) {
    return {[codec, error](const Node& node, const Fact<T>& standard) {
                if (!node.Value().is_object() || !node.Value().contains("error"))
                    return Fact<T>(codec.read(node, standard.value.value_or(T())));
                node.ExpectKeys({"error"});
                return Fact<T>::Fails(error.read(node.Key("error"), 0));
            },
            [codec, error](const Fact<T>& fact, const Fact<T>& standard) {
                if (fact.value) return codec.write(*fact.value, standard.value.value_or(T()));
                Json object = Json::object();
                object["error"] = error.write(fact.error, 0);
                return object;
            }};
}

template <typename T>
Codec<std::vector<T>> ListOf(Codec<T> codec) {
    return PlainCodec<std::vector<T>>(
        [codec](const Node& node) {
            node.ExpectList();
            std::vector<T> list;
            for (size_t index = 0; index < node.Value().size(); ++index)
                list.push_back(codec.read(node.Entry(index), T()));
            return list;
        },
        [codec](const std::vector<T>& list) {
            Json entries = Json::array();
            for (const T& entry : list)
                entries.push_back(codec.write(entry, T()));
            return entries;
        });
}

}  // namespace machine::description
