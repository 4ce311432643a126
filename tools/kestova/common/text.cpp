#include "tools/kestova/common/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

#include "base/hexadecimal.h"
#include "base/nearest.h"
#include "base/utf.h"
#include "tools/kestova/common/display_width.h"

namespace {

// The text without a line break at its end, for a place that far from the left, where further lines begin
// too.
std::string Hanging(const std::string& text, size_t left, size_t columns) {
    if (columns == noLimit || left + DisplayWidth(text) <= columns) return text;
    std::string hanging;
    size_t at = left;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const bool begins = at == left;
        if (!begins && at + 1 + DisplayWidth(word) > columns) {
            hanging += "\n" + std::string(left, ' ');
            at = left;
        } else if (!begins) {
            hanging += ' ';
            ++at;
        }
        hanging += word;
        at += DisplayWidth(word);
    }
    return hanging;
}

// Characters that a terminal does not show but obeys: controls, and marks of the direction of a text.
struct Range {
    WCHAR first;
    WCHAR last;
};

constexpr Range obeyed[] = {{0x0000, 0x001F}, {0x007F, 0x009F}, {0x061C, 0x061C}, {0x200B, 0x200F},
                            {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}};

bool IsObeyed(WCHAR unit) {
    return std::ranges::any_of(obeyed,
                               [&](const Range& range) { return unit >= range.first && unit <= range.last; });
}

std::string Shown(std::string_view name, std::initializer_list<WCHAR> kept) {
    WideString text;
    for (const WCHAR unit : ToWide(name)) {
        if (IsObeyed(unit) && std::ranges::count(kept, unit) == 0) {
            text += ToWide("\\u" + Hex(unit, 4).substr(2));
        } else {
            text += unit;
        }
    }
    return ToUtf8(text);
}

// Text that is not UTF-8 becomes "?" as a whole.
bool IsUtf8(std::string_view text) {
    return text == "?" || ToWide(text) != TEXT("?");
}

// A path of this computer can be any bytes: those beyond ASCII are shown as `\xE9`.
std::string WithBytesShown(std::string_view text) {
    std::string shown;
    for (const char unit : text) {
        const auto byte = static_cast<unsigned char>(unit);
        if (byte == '\t' || (byte >= 0x20 && byte < 0x7F))
            shown += unit;
        else
            shown += "\\x" + Hex(byte, 2).substr(2);
    }
    return shown;
}

}  // namespace

std::string LetterText(WCHAR letter) {
    return ToUtf8(std::basic_string_view<WCHAR>(&letter, 1));
}

std::string OneLine(std::string_view text) {
    std::string line;
    for (const char unit : text) {
        switch (unit) {
            case '\r':
                line += "\\r";
                break;
            case '\n':
                line += "\\n";
                break;
            case '\0':
                line += "\\0";
                break;
            default:
                line += unit;
        }
    }
    return line;
}

std::string Printable(std::string_view name) {
    return Shown(name, {});
}

std::string PrintableText(std::string_view text) {
    std::string shown;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = text.substr(at, end - at);
        shown += IsUtf8(line) ? Shown(line, {TEXT('\t')}) : WithBytesShown(line);
        if (end < text.size()) shown += '\n';
        at = end + 1;
    }
    return shown;
}

std::string WithNamedNul(const std::string& text) {
    return text == std::string(1, '\0') ? "NUL" : text;
}

std::string Count(uint64_t count, std::string_view noun) {
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string TextOr(const std::optional<std::string>& text, const char* none) {
    return text.value_or(none);
}

std::string TextOr(const std::optional<int>& number, const char* none) {
    return number ? std::to_string(*number) : none;
}

std::string TextOr(const std::optional<WCHAR>& letter, const char* none) {
    return letter ? LetterText(*letter) : none;
}

std::string UnknownWord(std::string_view what, std::string_view name, const std::vector<std::string>& known) {
    const std::string nearest = Nearest(name, known);
    return "there is no " + std::string(what) + " '" + std::string(name) + "'" +
           (nearest.empty() ? "" : "; did you mean " + nearest + "?");
}

std::string SizeText(uint64_t bytes) {
    static constexpr std::array units = {"B", "KiB", "MiB", "GiB", "TiB"};
    double size = static_cast<double>(bytes);
    size_t unit = 0;
    for (; size >= 1024 && unit + 1 < units.size(); ++unit)
        size /= 1024;
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", size, units[unit]);
    return text;
}

std::string Table(const std::vector<std::vector<std::string>>& rows, const std::string& indent,
                  size_t columns) {
    std::vector<size_t> widths;
    std::vector<std::vector<std::string>> shown = rows;
    for (auto& row : shown) {
        for (std::string& cell : row)
            cell = Printable(cell);
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], DisplayWidth(row[i]));
    }
    std::string text;
    for (const auto& row : shown) {
        std::string line = indent;
        for (size_t i = 0; i + 1 < row.size(); ++i)
            line += row[i] + std::string(widths[i] - DisplayWidth(row[i]) + 2, ' ');
        if (!row.empty()) line += Hanging(row.back(), DisplayWidth(line), columns);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

std::string Wrapped(const std::string& text, size_t columns) {
    std::string wrapped;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        wrapped += Hanging(line, 0, columns) + "\n";
    return wrapped;
}
