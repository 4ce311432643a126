#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "machine/description/checks.h"
#include "machine/description/description.h"
#include "machine/description/types.h"

namespace machine {

namespace {

using description::Json;

// Detects duplicate keys in one object, of which the parser would silently keep one.
class DuplicateKeys {
  public:
    explicit DuplicateKeys(const std::string& file) : file_(file) {}

    void See(Json::parse_event_t event, const Json& value) {
        using Event = Json::parse_event_t;
        if (event == Event::key) {
            SeeKey(value.get<std::string>());
        } else if (event == Event::object_end || event == Event::array_end) {
            levels_.pop_back();
        } else {
            if (!levels_.empty() && levels_.back().isList) ++levels_.back().entries;
            if (event != Event::value) levels_.push_back({event == Event::array_start, 0, {}, {}});
        }
    }

  private:
    // An object or a list that is still open, and the parser's position in it.
    struct Level {
        bool isList;
        size_t entries;
        std::set<std::string> keys;
        std::string key;
    };

    void SeeKey(const std::string& key) {
        levels_.back().key = key;
        if (levels_.back().keys.insert(key).second) return;
        std::string place;
        for (const Level& level : levels_)
            place = level.isList ? description::PlaceOfEntry(place, level.entries - 1)
                                 : description::PlaceOfKey(place, level.key);
        throw DescriptionError(file_, place, "the key stands twice");
    }

    const std::string& file_;
    std::vector<Level> levels_;
};

// "line 3, column 7" for the byte at which the parser failed, counted from 1.
std::string PlaceOfByte(const std::string& text, size_t byte) {
    const std::string before = text.substr(0, byte > 0 ? byte - 1 : 0);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const size_t lineEnd = before.rfind('\n');
    const size_t column = before.size() - (lineEnd == std::string::npos ? 0 : lineEnd + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// The parser's message from a marker on, without the number and place in front.
std::string Complaint(const std::exception& error, const std::string& marker) {
    const std::string what = error.what();
    const size_t start = what.find(marker);
    return start == std::string::npos ? what : what.substr(start);
}

// The parser does not report the place of a number that is out of range, but quotes the number.
[[noreturn]] void FailOnHugeNumber(const std::string& text, const std::string& file,
                                   const std::exception& error) {
    const std::string complaint = Complaint(error, "number overflow");
    const size_t open = complaint.find('\'');
    const size_t close = complaint.rfind('\'');
    const std::string number = open < close ? complaint.substr(open + 1, close - open - 1) : std::string();
    throw DescriptionError(file, PlaceOfByte(text, text.find(number) + 1), number + " is too large");
}

Json Parse(const std::string& text, const std::string& file) {
    DuplicateKeys duplicates(file);
    const auto see = [&](int, Json::parse_event_t event, Json& value) {
        duplicates.See(event, value);
        return true;
    };
    constexpr bool throwing = true;
    constexpr bool ignoreComments = true;
    try {
        return Json::parse(text, see, throwing, ignoreComments);
    } catch (const Json::parse_error& error) {
        throw DescriptionError(file, PlaceOfByte(text, error.byte),
                               "no JSON: " + Complaint(error, "syntax error"));
    } catch (const Json::out_of_range& error) {
        FailOnHugeNumber(text, file, error);
    }
}

}  // namespace

Pc ReadDescription(const std::string& text, const std::string& fileName) {
    const Json json = Parse(text, fileName);
    Pc pc;
    description::ReadPc(description::Node(json, fileName), pc);
    description::CheckDescription(pc, fileName);
    return pc;
}

}  // namespace machine
