#include "machine/api/profile_text.h"

#include <algorithm>

#include "machine/api/ansi_code_page.h"

namespace machine {

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16Mark = "\xFF\xFE";
constexpr std::u16string_view lineEnd = u"\r\n";
constexpr size_t nowhere = std::u16string_view::npos;

std::u16string_view Trimmed(std::u16string_view text) {
    constexpr std::u16string_view blanks = u" \t";
    const size_t first = text.find_first_not_of(blanks);
    if (first == nowhere) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool SameName(std::u16string_view left, std::u16string_view right) {
    const auto upper = [](char16_t unit) {
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    };
    const std::u16string_view a = Trimmed(left), b = Trimmed(right);
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char16_t x, char16_t y) { return upper(x) == upper(y); });
}

// The name of a header line, whatever follows the bracket; nothing for other lines.
std::optional<std::u16string_view> HeaderName(std::u16string_view line) {
    const std::u16string_view text = Trimmed(line);
    const size_t close = text.find(u']');
    if (!text.starts_with(u'[') || close == nowhere) return std::nullopt;
    return text.substr(1, close - 1);
}

bool IsComment(std::u16string_view line) {
    return Trimmed(line).starts_with(u';');
}

// The name of the key; empty for comments and blank lines.
std::u16string_view KeyName(std::u16string_view line) {
    return IsComment(line) ? std::u16string_view() : Trimmed(line.substr(0, line.find(u'=')));
}

std::u16string_view WithoutQuotes(std::u16string_view value) {
    const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == u'"' || value.front() == u'\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

std::u16string FromUtf16Bytes(std::string_view bytes) {
    std::u16string text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        text += static_cast<char16_t>(low | high << 8);
    }
    return text;
}

std::string ToUtf16Bytes(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

}  // namespace

ProfileText::ProfileText(std::string_view bytes, bool skipUtf8Mark) {
    if (bytes.starts_with(utf16Mark)) {
        encoding_ = Encoding::Utf16;
        SplitLines(FromUtf16Bytes(bytes.substr(utf16Mark.size())));
    } else if (skipUtf8Mark && bytes.starts_with(utf8Mark)) {
        encoding_ = Encoding::Utf8Mark;
        SplitLines(FromAnsi(bytes.substr(utf8Mark.size())));
    } else {
        SplitLines(FromAnsi(bytes));
    }
}

std::string ProfileText::Bytes() const {
    std::u16string text;
    for (const Line& line : lines_)
        text += line.text + line.end;
    switch (encoding_) {
        case Encoding::Utf16:
            return std::string(utf16Mark) + ToUtf16Bytes(text);
        case Encoding::Utf8Mark:
            return std::string(utf8Mark) + ToAnsi(text);
        case Encoding::Ansi:
            break;
    }
    return ToAnsi(text);
}

std::optional<std::u16string> ProfileText::Value(std::u16string_view section, std::u16string_view key) const {
    const size_t at = FindKey(FindSection(section), key);
    if (at == nowhere) return std::nullopt;
    const std::u16string_view line = lines_[at].text;
    const size_t equals = line.find(u'=');
    if (equals == nowhere) return std::nullopt;
    return std::u16string(WithoutQuotes(Trimmed(line.substr(equals + 1))));
}

std::vector<std::u16string> ProfileText::SectionNames() const {
    std::vector<std::u16string> names;
    for (const Line& line : lines_) {
        if (const auto name = HeaderName(line.text)) names.emplace_back(*name);
    }
    return names;
}

std::vector<std::u16string> ProfileText::KeyNames(std::u16string_view section) const {
    std::vector<std::u16string> names;
    const Range range = FindSection(section);
    for (size_t i = range.begin; i < range.end; ++i) {
        const std::u16string_view name = KeyName(lines_[i].text);
        if (!name.empty() && lines_[i].text.find(u'=') != nowhere) names.emplace_back(name);
    }
    return names;
}

void ProfileText::Set(std::u16string_view section, std::u16string_view key, std::u16string_view value) {
    value.remove_prefix(std::min(value.find_first_not_of(u" \t"), value.size()));
    Range range = FindSection(section);
    if (range.begin == nowhere) {
        InsertLine(lines_.size(), u"[" + std::u16string(Trimmed(section)) + u"]");
        range = {lines_.size(), lines_.size()};
    }
    const std::u16string rest = u"=" + std::u16string(value);
    if (const size_t at = FindKey(range, key); at != nowhere) {
        lines_[at].text = std::u16string(KeyName(lines_[at].text)) + rest;
        return;
    }
    size_t position = range.end;
    while (position > range.begin && Trimmed(lines_[position - 1].text).empty())
        --position;
    InsertLine(position, std::u16string(Trimmed(key)) + rest);
}

void ProfileText::RemoveKey(std::u16string_view section, std::u16string_view key) {
    const size_t at = FindKey(FindSection(section), key);
    if (at != nowhere) lines_.erase(lines_.begin() + static_cast<ptrdiff_t>(at));
}

void ProfileText::RemoveSection(std::u16string_view section) {
    const Range range = FindSection(section);
    if (range.begin == nowhere) return;
    lines_.erase(lines_.begin() + static_cast<ptrdiff_t>(range.begin) - 1,
                 lines_.begin() + static_cast<ptrdiff_t>(range.end));
}

void ProfileText::SplitLines(std::u16string_view text) {
    while (!text.empty()) {
        const size_t length = std::min(text.find_first_of(lineEnd), text.size());
        const size_t end =
            text.substr(length).starts_with(lineEnd) ? 2 : std::min<size_t>(text.size() - length, 1);
        lines_.push_back({std::u16string(text.substr(0, length)), std::u16string(text.substr(length, end))});
        text.remove_prefix(length + end);
    }
}

ProfileText::Range ProfileText::FindSection(std::u16string_view section) const {
    const auto isHeader = [](const Line& line) { return HeaderName(line.text).has_value(); };
    const auto header = std::find_if(lines_.begin(), lines_.end(), [&](const Line& line) {
        const auto name = HeaderName(line.text);
        return name && SameName(*name, section);
    });
    if (header == lines_.end()) return {nowhere, nowhere};
    const auto next = std::find_if(header + 1, lines_.end(), isHeader);
    return {static_cast<size_t>(header - lines_.begin()) + 1, static_cast<size_t>(next - lines_.begin())};
}

size_t ProfileText::FindKey(const Range& range, std::u16string_view key) const {
    if (Trimmed(key).empty()) return nowhere;
    for (size_t i = range.begin; i < range.end; ++i) {
        if (SameName(KeyName(lines_[i].text), key)) return i;
    }
    return nowhere;
}

void ProfileText::InsertLine(size_t position, std::u16string text) {
    if (position > 0 && lines_[position - 1].end.empty()) lines_[position - 1].end = lineEnd;
    lines_.insert(lines_.begin() + static_cast<ptrdiff_t>(position),
                  {std::move(text), std::u16string(lineEnd)});
}

}  // namespace machine
