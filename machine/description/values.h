// The codecs of simple values: text, numbers, words, GUIDs, letters, files, registry keys.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "machine/description/node.h"
#include "machine/description/output.h"
#include "machine/description/schema.h"
#include "machine/facts/pc.h"

namespace machine::description {

struct Text {
    using Value = std::string;
    static void Read(const Node& node, std::string& text);
    static void Write(Output out, const std::string& text, const std::string& standard);
    static void Describe(Output out) { schema::Text(out); }
};

// Upper-case letters from A to Z.
struct Letters : Text {
    static void Read(const Node& node, std::string& letters);
    static void Describe(Output out) { schema::Text(out, "^[A-Z]*$"); }
};

// A letter from A to Z and a colon, "C:", or nothing.
struct DriveName : Text {
    static void Read(const Node& node, std::string& name);
    static void Describe(Output out) { schema::Text(out, "^([A-Za-z]:)?$"); }
};

// Bytes as pairs of hexadecimal digits; on reading, blanks are allowed between the digits.
struct HexBytes {
    using Value = std::string;
    static void Read(const Node& node, std::string& bytes);
    static void Write(Output out, const std::string& bytes, const std::string& standard);
    static void Describe(Output out) { schema::Text(out, "^( *[0-9A-Fa-f] *[0-9A-Fa-f])* *$"); }
    // {"hex": "ff fe"}, and in the object of the key "type", if there is one, what `type` describes.
    static void DescribeObject(Output out, void (*type)(Output out) = nullptr);
};

struct Flag {
    using Value = bool;
    static void Read(const Node& node, bool& flag);
    static void Write(Output out, bool flag, bool standard);
    static void Describe(Output out) { schema::Flag(out); }
};

struct GuidValue {
    using Value = Guid;
    static void Read(const Node& node, Guid& guid);
    static void Write(Output out, const Guid& guid, const Guid& standard);
    static void Describe(Output out) {
        schema::Text(out, "^\\{?[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\\}?$");
    }
};

// "15 GiB", or the bare number of bytes.
struct ByteCount {
    using Value = uint64_t;
    static void Read(const Node& node, uint64_t& bytes);
    static void Write(Output out, uint64_t bytes, uint64_t standard);
    static void Describe(Output out);
};

// {"sources/boot.wim": "text", "sources/data/": null, "unicode.ini": {"hex": "fffe"}}.
struct Files {
    using Value = FileTree;
    static void Read(const Node& node, FileTree& tree);
    static void Write(Output out, const FileTree& tree, const FileTree& standard);
    static void Describe(Output out);
};

// {"HKLM\\SYSTEM\\Setup": {"OOBE": "text", "Flags": {"type": "REG_DWORD", "hex": "01000000"}}}.
struct Registry {
    using Value = RegistryKeys;
    static void Read(const Node& node, RegistryKeys& keys);
    static void Write(Output out, const RegistryKeys& keys, const RegistryKeys& standard);
    static void Describe(Output out);
};

// Numbers are JSON numbers or text, decimal or with 0x in front.
enum class Notation {
    Decimal,  // 39
    Hex,      // "0x27", at least as many digits as the type holds
    Code,     // 13, "0x80004005"
};

struct NumberRange {
    int64_t least;
    uint64_t most;
};
// The bits of a negative number are those of int64_t.
uint64_t ReadNumber(const Node& node, NumberRange range);
void WriteNumber(Output out, uint64_t number, Notation notation, size_t bytes);

template <typename T, Notation notation = Notation::Decimal>
struct Number {
    using Value = T;

    static void Read(const Node& node, T& number) {
        using Limits = std::numeric_limits<T>;
        number = static_cast<T>(ReadNumber(node, {Limits::min(), static_cast<uint64_t>(Limits::max())}));
    }
    static void Write(Output out, T number, T) {
        if constexpr (std::is_signed_v<T>) {
            if (number < 0) return out.NegativeNumber(number);
        }
        WriteNumber(out, static_cast<uint64_t>(number), notation, sizeof(T));
    }
    static void Describe(Output out) {
        using Limits = std::numeric_limits<T>;
        schema::Number(out, Limits::min(), static_cast<uint64_t>(Limits::max()), schema::numberText);
    }
};

// A result code or a last error: a number, a negative one too, as some tools write an HRESULT; or its
// published name.
struct ErrorCode {
    using Value = uint32_t;

    static void Read(const Node& node, uint32_t& code);
    static void Write(Output out, uint32_t code, uint32_t);
    static void Describe(Output out);
};

// A row in a table of values with names: numbers or enumerators.
struct Named {
    std::string_view name;
    int64_t value;

    template <typename T>
    constexpr Named(std::string_view word, T named) : name(word), value(static_cast<int64_t>(named)) {}
};
using Words = std::span<const Named>;

// The value of a word; fails for a word without one.
int64_t ReadWord(const Node& node, Words words);
// The row of a value, or null.
const Named* FindValue(Words words, int64_t value);
// Whether the value is meant as a number: anything but text, or text that begins with a digit.
bool LooksLikeNumber(const Node& node);

void DescribeWords(Output out, Words words);

// One of the words in the table.
template <typename T, const auto& words>
struct Word {
    using Value = T;

    static void Read(const Node& node, T& value) { value = static_cast<T>(ReadWord(node, words)); }
    static void Write(Output out, T value, T) {
        out.Text(std::string(FindValue(words, static_cast<int64_t>(value))->name));
    }
    static void Describe(Output out) { DescribeWords(out, words); }
};

// One of the words in the table, or a number that has none.
template <typename T, const auto& words>
struct WordOrNumber {
    using Value = T;

    static void Read(const Node& node, T& value) {
        if (LooksLikeNumber(node)) return Number<T>::Read(node, value);
        Word<T, words>::Read(node, value);
    }
    static void Write(Output out, T value, T standard) {
        if (FindValue(words, static_cast<int64_t>(value)) == nullptr)
            return Number<T>::Write(out, value, standard);
        Word<T, words>::Write(out, value, standard);
    }
    static void Describe(Output out) {
        const Output values = schema::AnyOf(out);
        DescribeWords(values.Entry(), words);
        Number<T>::Describe(values.Entry());
    }
};

}  // namespace machine::description
