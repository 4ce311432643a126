// The simple values of a description: text, numbers, words, GUIDs, letters, files, registry keys.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "machine/description/codec.h"

namespace machine::description {

Codec<std::string> Text();
Codec<bool> Flag();
Codec<Guid> GuidValue();
// Upper-case letters from A to Z.
Codec<std::string> Letters();
// A letter from A to Z and a colon: "C:".
Codec<std::string> DriveName();
// "15 GiB", or the bare number of bytes.
Codec<uint64_t> ByteCount();
// Whether JSON can hold the text, which must be UTF-8.
bool IsJsonText(const std::string& text);
// Bytes as pairs of hexadecimal digits; on reading, blanks may stand between them.
Codec<std::string> HexBytes();
// {"sources/boot.wim": "text", "sources/data/": null, "unicode.ini": {"hex": "fffe"}}.
Codec<FileTree> Files();
// {"HKLM\\SYSTEM\\Setup": {"OOBE": "text", "Flags": {"type": "REG_DWORD", "hex": "01000000"}}}.
Codec<RegistryKeys> Registry();

// Numbers are JSON numbers or text, decimal or with 0x in front.
enum class Notation {
    Decimal,  // 39
    Hex,      // "0x27", at least as many digits as the type holds
    Code,     // 13, "0x80004005": result codes and last errors
};

// A number as the model keeps it: the bits of a negative one are those of int64_t.
struct NumberRange {
    int64_t least;
    uint64_t most;
};
uint64_t ReadNumber(const Node& node, NumberRange range);
Json WriteNumber(uint64_t number, Notation notation, size_t bytes);

template <typename T>
Codec<T> Number(Notation notation = Notation::Decimal) {
    using Limits = std::numeric_limits<T>;
    const NumberRange range = {Limits::min(), static_cast<uint64_t>(Limits::max())};
    return PlainCodec<T>([range](const Node& node) { return static_cast<T>(ReadNumber(node, range)); },
                         [notation](const T& number) -> Json {
                             if constexpr (std::is_signed_v<T>) {
                                 if (number < 0) return number;
                             }
                             return WriteNumber(static_cast<uint64_t>(number), notation, sizeof(T));
                         });
}

// Values with names.
template <typename T>
using Words = std::vector<std::pair<std::string, T>>;

template <typename T>
const T* FindWord(const Words<T>& words, const std::string& word) {
    for (const auto& [name, value] : words) {
        if (name == word) return &value;
    }
    return nullptr;
}

template <typename T>
const std::string* FindName(const Words<T>& words, const T& value) {
    for (const auto& [name, named] : words) {
        if (named == value) return &name;
    }
    return nullptr;
}

template <typename T>
std::vector<std::string> Names(const Words<T>& words) {
    std::vector<std::string> names;
    for (const auto& [name, value] : words)
        names.push_back(name);
    return names;
}

// Fails for a word that is none of these.
[[noreturn]] void FailOnWord(const Node& node, const std::vector<std::string>& words);

// One of the words.
template <typename T>
Codec<T> Word(Words<T> words) {
    return PlainCodec<T>(
        [words](const Node& node) {
            const T* const value = FindWord(words, node.Text());
            if (value == nullptr) FailOnWord(node, Names(words));
            return *value;
        },
        [words](const T& value) { return Json(*FindName(words, value)); });
}

// Whether the value is meant as a number: no text, or text that begins with a digit.
bool LooksLikeNumber(const Node& node);

// One of the words, or a number that has none.
template <typename T>
Codec<T> WordOrNumber(Words<T> words) {
    const Codec<T> word = Word(words);
    const Codec<T> number = Number<T>();
    return {[=](const Node& node, const T& standard) {
                return (LooksLikeNumber(node) ? number : word).read(node, standard);
            },
            [=](const T& value, const T& standard) {
                return (FindName(words, value) != nullptr ? word : number).write(value, standard);
            }};
}

}  // namespace machine::description
