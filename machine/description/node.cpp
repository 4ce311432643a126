#include "machine/description/node.h"

#include <algorithm>

#include "base/nearest.h"

namespace machine::description {

namespace {

bool IsPlainWord(const std::string& key) {
    return !key.empty() && std::all_of(key.begin(), key.end(), [](char unit) {
        return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || (unit >= '0' && unit <= '9');
    });
}

// The kind of a value, as the messages name it.
std::string Kind(const Json& value) {
    switch (value.type()) {
        case Json::value_t::object:
            return "an object";
        case Json::value_t::array:
            return "a list";
        case Json::value_t::string:
            return "text";
        case Json::value_t::boolean:
            return "true or false";
        case Json::value_t::null:
            return "null";
        default:
            return "a number";
    }
}

}  // namespace

const std::string& Node::Text() const {
    if (!value_.is_string()) Fail("must be text, not " + Kind(value_));
    return value_.get_ref<const std::string&>();
}

Node Node::Key(const std::string& key) const {
    return {value_.at(key), file_, PlaceOfKey(place_, key)};
}

Node Node::Entry(size_t index) const {
    return {value_.at(index), file_, PlaceOfEntry(place_, index)};
}

void Node::ExpectObject() const {
    if (!value_.is_object()) Fail("must be an object, not " + Kind(value_));
}

void Node::ExpectList() const {
    if (!value_.is_array()) Fail("must be a list, not " + Kind(value_));
}

void Node::ExpectKeys(const std::vector<std::string>& known) const {
    for (const auto& entry : value_.items()) {
        if (std::find(known.begin(), known.end(), entry.key()) == known.end())
            Key(entry.key()).Fail("unknown key " + Unknown(entry.key(), known));
    }
}

void Node::Fail(const std::string& what) const {
    throw DescriptionError(file_, place_.empty() ? "top level" : place_, what);
}

std::string PlaceOfKey(const std::string& place, const std::string& key) {
    if (!IsPlainWord(key)) return place + "[" + Json(key).dump() + "]";
    return place.empty() ? key : place + "." + key;
}

std::string PlaceOfEntry(const std::string& place, size_t index) {
    return place + "[" + std::to_string(index) + "]";
}

std::string Unknown(const std::string& word, const std::vector<std::string>& known) {
    const std::string nearest = Nearest(word, known);
    const std::string quoted = "\"" + word + "\"";
    return nearest.empty() ? quoted : quoted + " (did you mean \"" + nearest + "\"?)";
}

}  // namespace machine::description
