#include "machine/description/positions.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

#include "machine/description/node.h"

namespace machine::description {

namespace {

// Walks through the text as far as it is JSON and a description can be, and into what holds a wanted place.
class Walk {
  public:
    Walk(std::string_view text, const std::set<std::string>& wanted) : text_(text), wanted_(wanted) {
        SkipBlanks();
        offsets[""] = at_;
        Value("");
    }

    std::unordered_map<std::string, size_t> offsets;

  private:
    void Value(const std::string& place) {
        SkipBlanks();
        const auto next = wanted_.lower_bound(place);
        const bool isWanted = next != wanted_.end() && next->starts_with(place);
        if (isWanted && Now() == '{') {
            Members(place);
        } else if (isWanted && Now() == '[') {
            Entries(place);
        } else {
            Skip();
        }
    }

    void Members(const std::string& place) {
        ++at_;
        for (SkipBlanks(); Now() == '"'; SkipComma()) {
            const size_t key = at_;
            const std::string_view written = String();
            const Json name = Json::parse(written, nullptr, false);
            if (!name.is_string() || written.size() > longestKey || !Count()) return End();
            const std::string member = PlaceOfKey(place, name.get<std::string>());
            offsets[member] = key;
            SkipBlanks();
            if (Now() != ':') return End();
            ++at_;
            Value(member);
        }
        Close('}');
    }

    void Entries(const std::string& place) {
        ++at_;
        SkipBlanks();
        for (size_t index = 0; Now() != ']' && Now() != '\0'; ++index) {
            const size_t before = at_;
            const std::string entry = PlaceOfEntry(place, index);
            offsets[entry] = at_;
            Value(entry);
            SkipComma();
            if (at_ == before || !Count()) return End();
        }
        Close(']');
    }

    // A value with all that it holds.
    void Skip() {
        size_t open = 0;
        do {
            SkipBlanks();
            const char first = Now();
            const bool closes = first == '}' || first == ']';
            if (first == '\0' || (open == 0 && (closes || first == ','))) return;
            if (first == '"') {
                String();
                continue;
            }
            if (closes) --open;
            if (first == '{' || first == '[') ++open;
            at_ = std::min(text_.find_first_of(",:]}[{\" \t\r\n/", at_ + 1), text_.size());
        } while (open > 0);
    }

    // With its quotes.
    std::string_view String() {
        const size_t begin = at_;
        for (++at_; Now() != '"' && Now() != '\0'; ++at_)
            if (Now() == '\\') ++at_;
        at_ = std::min(at_ + 1, text_.size());
        return text_.substr(begin, at_ - begin);
    }

    void SkipComma() {
        SkipBlanks();
        if (Now() == ',') ++at_;
        SkipBlanks();
    }

    void Close(char bracket) {
        if (Now() != bracket) return End();
        ++at_;
    }

    void SkipBlanks() {
        for (;;) {
            at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size());
            const std::string_view rest = text_.substr(at_);
            if (rest.starts_with("//")) {
                at_ = std::min(text_.find('\n', at_), text_.size());
            } else if (rest.starts_with("/*")) {
                const size_t end = text_.find("*/", at_ + 2);
                at_ = end == std::string_view::npos ? text_.size() : end + 2;
            } else {
                return;
            }
        }
    }

    // False behind more values than a description has.
    bool Count() { return ++counted_ <= mostValues; }

    void End() { at_ = text_.size(); }

    // 0 behind the end; no text of JSON has it as it stands.
    char Now() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    // Each byte of a key can be written with six.
    static constexpr size_t longestKey = 6 * longestText + 2;

    std::string_view text_;
    const std::set<std::string>& wanted_;
    size_t at_ = 0;
    size_t counted_ = 0;
};

// Some editors begin a file with it, and the parser skips it.
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

}  // namespace

Lines::Lines(const std::string& text) : starts_{0} {
    for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1))
        starts_.push_back(end + 1);
}

Position Lines::Of(size_t offset) const {
    const auto next = std::ranges::upper_bound(starts_, offset);
    return {static_cast<size_t>(next - starts_.begin()), offset - *(next - 1) + 1};
}

std::unordered_map<std::string, size_t> OffsetsByPlace(const std::string& text,
                                                       const std::set<std::string>& wanted) {
    const size_t mark = text.starts_with(utf8Mark) ? utf8Mark.size() : 0;
    std::unordered_map<std::string, size_t> offsets =
        Walk(std::string_view(text).substr(mark), wanted).offsets;
    for (auto& [place, offset] : offsets)
        offset += mark;
    return offsets;
}

}  // namespace machine::description
