#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "machine/description/checks.h"
#include "machine/description/description.h"
#include "machine/description/types.h"

namespace machine {

namespace {

using description::Json;
using description::longestText;
using description::Source;

// Watches the parser: refuses a text that would take much more memory than it has bytes, and duplicate keys
// in one object, of which the parser would silently keep one.
class Watch {
  public:
    explicit Watch(Source& source) : source_(source) {}

    void See(Json::parse_event_t event, const Json& value) {
        using Event = Json::parse_event_t;
        if (event == Event::key) {
            SeeKey(value.get_ref<const std::string&>());
        } else if (event == Event::object_end || event == Event::array_end) {
            levels_.pop_back();
        } else {
            if (!levels_.empty() && levels_.back().isList) ++levels_.back().entries;
            if (!source_.Count(1)) source_.Fail(Place(), description::tooManyValues);
            if (event != Event::value) Enter(event == Event::array_start);
        }
    }

  private:
    static constexpr size_t deepest = 32;

    // An object or a list that is still open, and the parser's position in it.
    struct Level {
        bool isList;
        size_t entries;
        std::set<std::string> keys;
        std::string key;
    };

    void Enter(bool isList) {
        if (levels_.size() == deepest)
            source_.Fail(Place(), "nested deeper than " + std::to_string(deepest) + " levels");
        levels_.push_back({isList, 0, {}, {}});
    }

    void SeeKey(const std::string& key) {
        if (key.size() > longestText) {
            levels_.pop_back();
            source_.Fail(Place(), "a key longer than " + std::to_string(longestText) + " bytes");
        }
        levels_.back().key = key;
        if (!levels_.back().keys.insert(key).second) source_.Fail(Place(), "the key stands twice");
    }

    std::string Place() const {
        std::string place;
        for (const Level& level : levels_)
            place = level.isList ? description::PlaceOfEntry(place, level.entries - 1)
                                 : description::PlaceOfKey(place, level.key);
        return place;
    }

    Source& source_;
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

// The beginning of a text that a message quotes.
std::string Shortened(const std::string& text) {
    constexpr size_t most = 200;
    if (text.size() <= most) return text;
    size_t end = most;
    while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end) + "...";
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
    throw DescriptionError(file, PlaceOfByte(text, text.find(number) + 1),
                           Shortened(number) + " is too large");
}

Json Parse(const std::string& text, const std::string& file, Source& source) {
    Watch watch(source);
    const auto see = [&](int, Json::parse_event_t event, Json& value) {
        watch.See(event, value);
        return true;
    };
    constexpr bool throwing = true;
    constexpr bool ignoreComments = true;
    try {
        return Json::parse(text, see, throwing, ignoreComments);
    } catch (const Json::parse_error& error) {
        throw DescriptionError(file, PlaceOfByte(text, error.byte),
                               "no JSON: " + Shortened(Complaint(error, "syntax error")));
    } catch (const Json::out_of_range& error) {
        FailOnHugeNumber(text, file, error);
    }
}

}  // namespace

Pc ReadDescription(const std::string& text, const std::string& fileName) {
    Source source(fileName);
    const Json json = Parse(text, fileName, source);
    Pc pc;
    description::ReadPc(description::Node(json, source), pc);
    description::CheckDescription(pc, fileName);
    return pc;
}

}  // namespace machine
