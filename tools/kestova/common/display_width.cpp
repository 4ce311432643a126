#include "tools/kestova/common/display_width.h"

#include <algorithm>

namespace {

// The first character, with the number of its bytes; the text is not empty.
struct Decoded {
    char32_t character;
    size_t bytes;
};

Decoded FirstOf(std::string_view text) {
    const auto byte = [&](size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U; };
    const unsigned lead = byte(0);
    const size_t bytes = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t character = bytes == 1 ? lead : lead & (0xFFU >> (bytes + 1));
    for (size_t at = 1; at < bytes; ++at)
        character = character << 6 | (byte(at) & 0x3FU);
    return {character, std::min(bytes, text.size())};
}

}  // namespace

size_t DisplayWidth(std::string_view text) {
    size_t width = 0;
    while (!text.empty()) {
        const Decoded first = FirstOf(text);
        width += CharacterWidth(first.character);
        text.remove_prefix(first.bytes);
    }
    return width;
}

std::string CutToWidth(const std::string& text, size_t columns) {
    if (DisplayWidth(text) <= columns) return text;
    std::string cut;
    size_t width = 1;  // of the ellipsis
    for (std::string_view rest = text; !rest.empty();) {
        const Decoded first = FirstOf(rest);
        width += CharacterWidth(first.character);
        if (width > columns) break;
        cut += rest.substr(0, first.bytes);
        rest.remove_prefix(first.bytes);
    }
    return cut + "…";
}

// How much both begin with.
static size_t LengthOfSame(const std::string& left, const std::string& right) {
    const size_t shorter = std::min(left.size(), right.size());
    const auto end = left.begin() + static_cast<std::ptrdiff_t>(shorter);
    return static_cast<size_t>(std::mismatch(left.begin(), end, right.begin()).first - left.begin());
}

std::string CutAroundDifference(const std::string& text, const std::string& other) {
    constexpr size_t longest = 60;
    constexpr size_t before = 20;
    const size_t at = LengthOfSame(text, other);
    if (at + before <= longest) return CutToWidth(text, longest);
    size_t begin = std::min(at, text.size()) - before;
    while (begin > 0 && (static_cast<unsigned char>(text[begin]) & 0xC0) == 0x80)
        --begin;
    return "…" + CutToWidth(text.substr(begin), longest);
}
