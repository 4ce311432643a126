// A JSON value of a description together with its place, so that every message can name it.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace machine::description {

using Json = nlohmann::ordered_json;

// The bits of a negative number are those of int64_t.
struct WholeNumber {
    uint64_t bits;
    bool negative;
};

class Node {
  public:
    // The outermost value.
    Node(const Json& value, const std::string& file) : value_(value), file_(file) {}

    bool IsNull() const;
    bool IsText() const;
    bool IsObject() const;
    // The text or the flag of the value; any other kind fails.
    const std::string& Text() const;
    bool Flag() const;
    // The value of a JSON number without fraction, otherwise nothing.
    std::optional<WholeNumber> Number() const;
    // The value as it is written in JSON.
    std::string Spelling() const;

    // The keys of an object in their order, and whether the value is an object with that key.
    std::vector<std::string> Keys() const;
    bool Has(std::string_view key) const;
    // The number of entries of a list.
    size_t Size() const;
    // The value of a key, and an entry of a list; both must exist.
    Node Key(std::string_view key) const;
    Node Entry(size_t index) const;

    // Fail unless the value is of that kind.
    void ExpectObject() const;
    void ExpectList() const;
    // Fails unless each key of the object is one of these.
    void ExpectKeys(const std::vector<std::string>& known) const;
    [[noreturn]] void Fail(const std::string& what) const;

  private:
    Node(const Json& value, const std::string& file, std::string place)
        : value_(value), file_(file), place_(std::move(place)) {}

    const Json& value_;
    const std::string& file_;
    std::string place_;
};

// The place of a key in the object at `place`: "disks[0].offset", or host.files["IDE.INI"] for a key with
// other characters than letters and digits.
std::string PlaceOfKey(const std::string& place, const std::string& key);
// "disks[0]".
std::string PlaceOfEntry(const std::string& place, size_t index);

// A word in quotes with the nearest known one: "ofset" (did you mean "offset"?).
std::string Unknown(const std::string& word, const std::vector<std::string>& known);

}  // namespace machine::description
