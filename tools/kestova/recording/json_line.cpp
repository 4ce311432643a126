#include "tools/kestova/recording/json_line.h"

#include <array>

namespace {

using Json = nlohmann::ordered_json;

constexpr size_t deepest = 32;
constexpr size_t mostKeys = 1000;  // the parser looks for each among those before it
constexpr size_t mostValues = size_t{8} << 20;

struct Excess {};

// Watches the parser, and ends it where the text has too much of something.
class Watch {
  public:
    void See(size_t depth, Json::parse_event_t event) {
        using Event = Json::parse_event_t;
        if (event == Event::object_start || event == Event::array_start) {
            if (depth >= deepest) throw Excess();
            keys_[depth] = 0;
        }
        if (event == Event::key && ++keys_[depth - 1] > mostKeys) throw Excess();
        if (++seen_ > mostValues) throw Excess();
    }

  private:
    std::array<size_t, deepest> keys_ = {};  // of the object at each depth
    size_t seen_ = 0;
};

}  // namespace

Json ParsedLine(std::string_view text) {
    if (text.size() > longestLine) return Json::value_t::discarded;
    Watch watch;
    const auto see = [&](int depth, Json::parse_event_t event, const Json&) {
        watch.See(static_cast<size_t>(depth), event);
        return true;
    };
    try {
        return Json::parse(text, see, false);
    } catch (const Excess&) {
        return Json::value_t::discarded;
    }
}

LineEnd ReadLine(std::istream& lines, std::string& line) {
    line.clear();
    std::streambuf& bytes = *lines.rdbuf();
    using Traits = std::streambuf::traits_type;
    for (auto next = bytes.sbumpc(); next != Traits::eof(); next = bytes.sbumpc()) {
        if (next == '\n') return LineEnd::Whole;
        if (line.size() == longestLine) return LineEnd::TooLong;
        line += Traits::to_char_type(next);
    }
    return LineEnd::TornOff;
}
