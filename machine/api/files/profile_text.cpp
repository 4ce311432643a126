#include "machine/api/files/profile_text.h"

#include <algorithm>

#include "machine/api/text/ansi_code_page.h"

namespace machine {

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16Mark = "\xFF\xFE";
constexpr WideView lineEnd = TEXT("\r\n");
constexpr size_t nowhere = WideView::npos;

WideView Trimmed(WideView text) {
    constexpr WideView blanks = TEXT(" \t");
    const size_t first = text.find_first_not_of(blanks);
    if (first == nowhere) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Names are equal if this is.
WideString Compared(WideView name) {
    return UpperCase(WideString(Trimmed(name)));
}

// The section name of a header line, ignoring what follows the bracket; nothing for other lines.
std::optional<WideView> HeaderName(WideView line) {
    const WideView text = Trimmed(line);
    const size_t close = text.find(TEXT(']'));
    if (!text.starts_with(TEXT('[')) || close == nowhere) return std::nullopt;
    return text.substr(1, close - 1);
}

bool IsComment(WideView line) {
    return Trimmed(line).starts_with(TEXT(';'));
}

// The key of a line; empty for comments and blank lines.
WideView KeyName(WideView line) {
    return IsComment(line) ? WideView() : Trimmed(line.substr(0, line.find(TEXT('='))));
}

WideView WithoutQuotes(WideView value) {
    const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == TEXT('"') || value.front() == TEXT('\''));
    return quoted ? value.substr(1, value.size() - 2) : value;
}

WideString FromUtf16Bytes(std::string_view bytes) {
    WideString text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        text += static_cast<WCHAR>(low | high << 8);
    }
    return text;
}

std::string ToUtf16Bytes(WideView text) {
    std::string bytes;
    for (const WCHAR unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

}  // namespace

ProfileText::Line::Line(WideString newText, WideString newEnd) : end(std::move(newEnd)) {
    SetText(std::move(newText));
}

void ProfileText::Line::SetText(WideString newText) {
    text = std::move(newText);
    const std::optional<WideView> header = HeaderName(text);
    const WideView key = KeyName(text);
    kind = header ? LineKind::Header : key.empty() ? LineKind::Other : LineKind::Key;
    name = Compared(header.value_or(key));
}

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
    WideString text;
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

std::optional<WideString> ProfileText::Value(WideView section, WideView key) const {
    const size_t at = FindKey(FindSection(section), key);
    if (at == nowhere) return std::nullopt;
    const WideView line = lines_[at].text;
    const size_t equals = line.find(TEXT('='));
    if (equals == nowhere) return std::nullopt;
    return WideString(WithoutQuotes(Trimmed(line.substr(equals + 1))));
}

std::vector<WideString> ProfileText::SectionNames() const {
    std::vector<WideString> names;
    for (const Line& line : lines_) {
        if (const auto name = HeaderName(line.text)) names.emplace_back(*name);
    }
    return names;
}

std::vector<WideString> ProfileText::KeyNames(WideView section) const {
    std::vector<WideString> names;
    const Range range = FindSection(section);
    for (size_t i = range.begin; i < range.end; ++i) {
        const WideView name = KeyName(lines_[i].text);
        if (!name.empty() && lines_[i].text.find(TEXT('=')) != nowhere) names.emplace_back(name);
    }
    return names;
}

void ProfileText::Set(WideView section, WideView key, WideView value) {
    value.remove_prefix(std::min(value.find_first_not_of(TEXT(" \t")), value.size()));
    Range range = FindSection(section);
    if (range.begin == nowhere) {
        InsertLine(lines_.size(), TEXT("[") + WideString(Trimmed(section)) + TEXT("]"));
        range = {lines_.size(), lines_.size()};
    }
    const WideString rest = TEXT("=") + WideString(value);
    if (const size_t at = FindKey(range, key); at != nowhere) {
        lines_[at].SetText(WideString(KeyName(lines_[at].text)) + rest);
        return;
    }
    size_t position = range.end;
    while (position > range.begin && Trimmed(lines_[position - 1].text).empty())
        --position;
    InsertLine(position, WideString(Trimmed(key)) + rest);
}

void ProfileText::RemoveKey(WideView section, WideView key) {
    const size_t at = FindKey(FindSection(section), key);
    if (at != nowhere) lines_.erase(lines_.begin() + static_cast<ptrdiff_t>(at));
}

void ProfileText::RemoveSection(WideView section) {
    const Range range = FindSection(section);
    if (range.begin == nowhere) return;
    lines_.erase(lines_.begin() + static_cast<ptrdiff_t>(range.begin) - 1,
                 lines_.begin() + static_cast<ptrdiff_t>(range.end));
}

void ProfileText::SplitLines(WideView text) {
    while (!text.empty()) {
        const size_t length = std::min(text.find_first_of(lineEnd), text.size());
        const size_t end =
            text.substr(length).starts_with(lineEnd) ? 2 : std::min<size_t>(text.size() - length, 1);
        lines_.emplace_back(WideString(text.substr(0, length)), WideString(text.substr(length, end)));
        text.remove_prefix(length + end);
    }
}

ProfileText::Range ProfileText::FindSection(WideView section) const {
    const auto isHeader = [](const Line& line) { return line.kind == LineKind::Header; };
    const auto header = std::find_if(
        lines_.begin(), lines_.end(),
        [&, name = Compared(section)](const Line& line) { return isHeader(line) && line.name == name; });
    if (header == lines_.end()) return {nowhere, nowhere};
    const auto next = std::find_if(header + 1, lines_.end(), isHeader);
    return {static_cast<size_t>(header - lines_.begin()) + 1, static_cast<size_t>(next - lines_.begin())};
}

size_t ProfileText::FindKey(const Range& range, WideView key) const {
    const WideString name = Compared(key);
    for (size_t i = range.begin; i < range.end; ++i) {
        if (lines_[i].kind == LineKind::Key && lines_[i].name == name) return i;
    }
    return nowhere;
}

void ProfileText::InsertLine(size_t position, WideString text) {
    if (position > 0 && lines_[position - 1].end.empty()) lines_[position - 1].end = lineEnd;
    lines_.emplace(lines_.begin() + static_cast<ptrdiff_t>(position), std::move(text), WideString(lineEnd));
}

}  // namespace machine
