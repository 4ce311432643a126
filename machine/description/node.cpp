#include "machine/description/node.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/nearest.h"
#include "machine/description/description.h"
#include "machine/description/positions.h"

namespace machine::description {

namespace {

bool IsAlphanumeric(const std::string& key) {
    return !key.empty() && std::all_of(key.begin(), key.end(), [](char unit) {
        return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || (unit >= '0' && unit <= '9');
    });
}

// The kind of a value, for messages.
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

// What people write who know disks, but not this description.
struct UsualMistake {
    const char* word;
    const char* key;
    const char* example;
};

constexpr UsualMistake usualMistakes[] = {
    {"active", "bootIndicator", ": 1"},
    {"bootable", "bootIndicator", ": 1"},
    {"boot", "bootIndicator", ": 1"},
    {"type", "mbrType", ": \"0x07\", or \"gptType\""},
    {"id", "gptId", ""},
    {"uuid", "gptId", ""},
    {"partuuid", "gptId", ""},
    {"start", "offset", ""},
    {"length", "size", ""},
    {"letter", "letters", ": \"C\""},
    {"drive", "letters", ": \"C\""},
    {"driveLetter", "letters", ": \"C\""},
    {"bus", "busType", ""},
    {"path", "image", ""},
    {"file", "image", ""},
    {"table", "style", ": \"mbr\" or \"gpt\""},
    {"diskSignature", "signature", ""},
    {"uefi", "firmware", ": {\"kind\": \"uefi\"}"},
    {"os", "system", ": {\"kind\": \"windows\"}"},
};

}  // namespace

Source::Source(const std::string& file, std::vector<Flaw>& flaws) : file_(file), flaws_(&flaws) {
    for (const Flaw& flaw : flaws)
        known_.insert(flaw.place);
}

bool Source::Count(size_t values) {
    counted_ += values;
    return counted_ <= mostValues;
}

void Source::Fail(const std::string& place, const std::string& what) const {
    if (flaws_ != nullptr) throw Failure{{place, what}};
    throw DescriptionError(file_, place.empty() ? "top level" : place, what);
}

void Source::FailIn(const std::string& text, size_t offset, const std::string& what) const {
    if (flaws_ != nullptr) throw Failure{{"", what, offset}};
    const auto [line, column] = Lines(text).Of(offset);
    throw DescriptionError(file_, "line " + std::to_string(line) + ", column " + std::to_string(column),
                           what);
}

void Source::Report(const std::string& place, const std::string& what) const {
    if (flaws_ == nullptr) Fail(place, what);
    flaws_->push_back({place, what});
}

bool Source::IsRight(const std::string& place) const {
    const auto below = known_.lower_bound(place);
    if (below != known_.end() && below->starts_with(place)) return false;
    for (std::string above = PlaceAbove(place); !above.empty(); above = PlaceAbove(above))
        if (known_.contains(above)) return false;
    return true;
}

bool Node::IsNull() const {
    return value_.is_null();
}

bool Node::IsText() const {
    return value_.is_string();
}

bool Node::IsObject() const {
    return value_.is_object();
}

const std::string& Node::Text() const {
    const std::string& text = Content();
    if (text.size() > longestText) Fail("is longer than " + std::to_string(longestText) + " bytes");
    return text;
}

const std::string& Node::Content() const {
    if (!value_.is_string()) Fail("must be text, not " + Kind(value_));
    return value_.get_ref<const std::string&>();
}

bool Node::Flag() const {
    if (!value_.is_boolean()) Fail("must be true or false");
    return value_.get<bool>();
}

std::optional<WholeNumber> Node::Number() const {
    if (!value_.is_number_integer()) return std::nullopt;
    const bool negative = !value_.is_number_unsigned() && value_.get<int64_t>() < 0;
    return WholeNumber{value_.get<uint64_t>(), negative};
}

std::string Node::Spelling() const {
    return value_.dump();
}

std::vector<std::string> Node::Keys() const {
    std::vector<std::string> keys;
    for (const auto& entry : value_.items())
        keys.push_back(entry.key());
    return keys;
}

std::vector<std::pair<std::string, Node>> Node::Members() const {
    std::vector<std::pair<std::string, Node>> members;
    for (const auto& entry : value_.items())
        members.emplace_back(entry.key(), Node(entry.value(), source_, PlaceOfKey(place_, entry.key())));
    return members;
}

bool Node::Has(std::string_view key) const {
    return value_.contains(std::string(key));
}

size_t Node::Size() const {
    return value_.size();
}

Node Node::Key(std::string_view key) const {
    const std::string name(key);
    return {value_.at(name), source_, PlaceOfKey(place_, name)};
}

Node Node::Entry(size_t index) const {
    return {value_.at(index), source_, PlaceOfEntry(place_, index)};
}

void Node::ExpectObject() const {
    if (!value_.is_object()) Fail("must be an object, not " + Kind(value_));
}

void Node::ExpectList() const {
    if (!value_.is_array()) Fail("must be a list, not " + Kind(value_));
}

void Node::ExpectKeys(const std::vector<std::string>& known) const {
    for (const std::string& key : Keys()) {
        if (std::find(known.begin(), known.end(), key) == known.end())
            Key(key).Report("unknown key " + Unknown(key, known));
    }
}

std::string PlaceOfKey(const std::string& place, const std::string& key) {
    if (!IsAlphanumeric(key)) return place + "[" + Json(key).dump() + "]";
    return place.empty() ? key : place + "." + key;
}

std::string PlaceAbove(const std::string& place) {
    const size_t end = place.find_last_of(".[");
    return place.substr(0, end == std::string::npos ? 0 : end);
}

std::string PlaceOfEntry(const std::string& place, size_t index) {
    return place + "[" + std::to_string(index) + "]";
}

std::string Unknown(const std::string& word, const std::vector<std::string>& known) {
    const std::string quoted = "\"" + word + "\"";
    for (const UsualMistake& usual : usualMistakes) {
        if (word == usual.word && std::find(known.begin(), known.end(), usual.key) != known.end())
            return quoted + " (did you mean \"" + usual.key + "\"" + usual.example + "?)";
    }
    // A longer word is not mistyped but made, as is a longer list; comparing them takes its time.
    constexpr size_t longestTyped = 64;
    constexpr size_t longestList = 100;
    const bool isTyped = word.size() <= longestTyped && known.size() <= longestList &&
                         std::all_of(known.begin(), known.end(),
                                     [](const std::string& other) { return other.size() <= longestTyped; });
    const std::string nearest = isTyped ? Nearest(word, known) : "";
    return nearest.empty() ? quoted : quoted + " (did you mean \"" + nearest + "\"?)";
}

}  // namespace machine::description
