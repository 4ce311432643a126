// A value of a description together with the place where it stands, so that every message can name it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "machine/description/description.h"

namespace machine::description {

using Json = nlohmann::ordered_json;

class Node {
  public:
    // The outermost value.
    Node(const Json& value, const std::string& file) : value_(value), file_(file) {}

    const Json& Value() const { return value_; }
    // The text of the value; anything else fails.
    const std::string& Text() const;
    // The value of a key, and an entry of a list; both must exist.
    Node Key(const std::string& key) const;
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

// The place of a key in the object at `place`: "disks[0].offset", or host.files["IDE.INI"] for a key that is
// no plain word.
std::string PlaceOfKey(const std::string& place, const std::string& key);
// "disks[0]".
std::string PlaceOfEntry(const std::string& place, size_t index);

// A word in quotes with the nearest of the right ones: "ofset" (did you mean "offset"?).
std::string Unknown(const std::string& word, const std::vector<std::string>& known);

}  // namespace machine::description
