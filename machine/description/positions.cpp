#include "machine/description/positions.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

#include "machine/description/node.h"

namespace machine::description {

namespace {

// Walks through the text as far as it is JSON, and as deep as a description can be.
class Walk {
  public:
    explicit Walk(std::string_view text) : text_(text) { Value("", 0); }

    std::unordered_map<std::string, size_t> offsets;

  private:
    static constexpr size_t deepest = 32;

    void Value(const std::string& place, size_t depth) {
        SkipBlanks();
        offsets.try_emplace(place, at_);
        if (depth > deepest) return End();
        const char first = Now();
        if (first == '{') {
            Members(place, depth);
        } else if (first == '[') {
            Entries(place, depth);
        } else if (first == '"') {
            String();
        } else {
            at_ = std::min(text_.find_first_of(",]} \t\r\n/", at_), text_.size());
        }
    }

    void Members(const std::string& place, size_t depth) {
        ++at_;
        for (SkipBlanks(); Now() == '"'; SkipComma()) {
            const size_t key = at_;
            const Json name = Json::parse(String(), nullptr, false);
            if (!name.is_string()) return End();
            const std::string member = PlaceOfKey(place, name.get<std::string>());
            offsets[member] = key;
            SkipBlanks();
            if (Now() != ':') return End();
            ++at_;
            Value(member, depth + 1);
        }
        Close('}');
    }

    void Entries(const std::string& place, size_t depth) {
        ++at_;
        SkipBlanks();
        for (size_t index = 0; Now() != ']' && Now() != '\0'; ++index) {
            const size_t before = at_;
            Value(PlaceOfEntry(place, index), depth + 1);
            SkipComma();
            if (at_ == before) return End();
        }
        Close(']');
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

    void End() { at_ = text_.size(); }

    // 0 behind the end; no text of JSON has it as it stands.
    char Now() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    std::string_view text_;
    size_t at_ = 0;
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

std::unordered_map<std::string, size_t> OffsetsByPlace(const std::string& text) {
    const size_t mark = text.starts_with(utf8Mark) ? utf8Mark.size() : 0;
    std::unordered_map<std::string, size_t> offsets = Walk(std::string_view(text).substr(mark)).offsets;
    for (auto& [place, offset] : offsets)
        offset += mark;
    return offsets;
}

}  // namespace machine::description
