// A JSON value of a description together with its place, so that every message can name it.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace machine::description {

using Json = nlohmann::ordered_json;

// The bits of a negative number are those of int64_t.
struct WholeNumber {
    uint64_t bits;
    bool negative;
};

inline constexpr size_t mostValues = 10000;

// What is wrong at a place: "disks[0].offset", or nothing for the outermost value.
struct Flaw {
    std::string place;
    std::string what;
    std::optional<size_t> offset = std::nullopt;  // in the text, if it is not JSON there
};

// The file of a description, and how much more it may hold: a few bytes can stand for much more memory.
class Source {
  public:
    explicit Source(const std::string& file) : file_(file) {}
    // Collects what is wrong behind what is known already, as far as it can go on from there, instead of
    // failing at once.
    Source(const std::string& file, std::vector<Flaw>& flaws);

    // Counts values of the file, and what follows from them; false if they are too many.
    bool Count(size_t values);
    // What cannot be read any further; Try above it goes on behind.
    [[noreturn]] void Fail(const std::string& place, const std::string& what) const;
    // What is no JSON at that offset of the text.
    [[noreturn]] void FailIn(const std::string& text, size_t offset, const std::string& what) const;
    // What is wrong without keeping anything from being read.
    void Report(const std::string& place, const std::string& what) const;
    // Reads a part, of which others do not depend.
    template <typename Part>
    void Try(Part part) const {
        if (flaws_ == nullptr) return part();
        try {
            part();
        } catch (Failure& failure) {
            if (!std::exchange(failure.isCollected, true)) flaws_->push_back(failure.flaw);
            if (counted_ > mostValues) throw;
        }
    }
    // The whole, of a source that collects.
    template <typename Whole>
    void TryAll(Whole whole) const {
        try {
            Try(whole);
        } catch (const Failure&) {  // collected by then
            return;
        }
    }
    // Whether what is known at the beginning leaves the value at that place right: nothing is wrong in it,
    // nor with what holds it.
    bool IsRight(const std::string& place) const;

  private:
    struct Failure {
        Flaw flaw;
        bool isCollected = false;
    };

    const std::string& file_;
    std::vector<Flaw>* const flaws_ = nullptr;
    std::set<std::string> known_;  // places
    size_t counted_ = 0;
};

inline constexpr const char* tooManyValues = "more than 10000 values, files and folders; no PC has so many";

// The longest text that the platform handles, in bytes.
inline constexpr size_t longestText = 32767;

class Node {
  public:
    // The outermost value.
    Node(const Json& value, Source& source) : value_(value), source_(source) {}

    bool IsNull() const;
    bool IsText() const;
    bool IsObject() const;
    // The text or the flag of the value; any other kind fails. Only the content of a file or of a registry
    // value may be longer than longestText.
    const std::string& Text() const;
    const std::string& Content() const;
    bool Flag() const;
    // The value of a JSON number without fraction, otherwise nothing.
    std::optional<WholeNumber> Number() const;
    // The value as it is written in JSON.
    std::string Spelling() const;

    // The keys of an object in their order, those with their values, and whether the value is an object with
    // that key.
    std::vector<std::string> Keys() const;
    std::vector<std::pair<std::string, Node>> Members() const;
    bool Has(std::string_view key) const;
    // The number of entries of a list.
    size_t Size() const;
    // The value of a key, and an entry of a list; both must exist.
    Node Key(std::string_view key) const;
    Node Entry(size_t index) const;

    // Fail unless the value is of that kind.
    void ExpectObject() const;
    void ExpectList() const;
    // Reports each key of the object that is none of these.
    void ExpectKeys(const std::vector<std::string>& known) const;
    // Counts what follows from this value, beside the value itself.
    void Count(size_t values) const {
        if (!source_.Count(values)) Fail(tooManyValues);
    }
    [[noreturn]] void Fail(const std::string& what) const { source_.Fail(place_, what); }
    void Report(const std::string& what) const { source_.Report(place_, what); }
    template <typename Part>
    void Try(Part part) const {
        source_.Try(part);
    }

  private:
    Node(const Json& value, Source& source, std::string place)
        : value_(value), source_(source), place_(std::move(place)) {}

    const Json& value_;
    Source& source_;
    std::string place_;
};

// The place of a key in the object at `place`: "disks[0].offset", or host.files["IDE.INI"] for a key with
// other characters than letters and digits.
std::string PlaceOfKey(const std::string& place, const std::string& key);
// "disks[0]".
std::string PlaceOfEntry(const std::string& place, size_t index);

// "disks[0]" of "disks[0].partitions", and nothing of "disks".
std::string PlaceAbove(const std::string& place);

// A word in quotes with the known one that was meant: "ofset" (did you mean "offset"?), "active" (did you
// mean "bootIndicator": 1?).
std::string Unknown(const std::string& word, const std::vector<std::string>& known);

}  // namespace machine::description
