#include "machine/description/parse.h"

#include <set>

namespace machine::description {

namespace {

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
            if (!source_.Count(1)) source_.Fail(Place(), tooManyValues);
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
        if (!levels_.back().keys.insert(key).second) source_.Report(Place(), "the key stands twice");
    }

    std::string Place() const {
        std::string place;
        for (const Level& level : levels_)
            place = level.isList ? PlaceOfEntry(place, level.entries - 1) : PlaceOfKey(place, level.key);
        return place;
    }

    Source& source_;
    std::vector<Level> levels_;
};

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
[[noreturn]] void FailOnHugeNumber(const std::string& text, const Source& source,
                                   const std::exception& error) {
    const std::string complaint = Complaint(error, "number overflow");
    const size_t open = complaint.find('\'');
    const size_t close = complaint.rfind('\'');
    const std::string number = open < close ? complaint.substr(open + 1, close - open - 1) : std::string();
    source.FailIn(text, text.find(number), Shortened(number) + " is too large");
}

}  // namespace

Json Parse(const std::string& text, Source& source) {
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
        // Its bytes count from 1.
        source.FailIn(text, error.byte > 0 ? error.byte - 1 : 0,
                      "no JSON: " + Shortened(Complaint(error, "syntax error")));
    } catch (const Json::out_of_range& error) {
        FailOnHugeNumber(text, source, error);
    }
}

}  // namespace machine::description
