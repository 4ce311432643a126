#include "tools/kestova/common/text_differences.h"

#include <algorithm>

#include "tools/kestova/common/display_width.h"

// How much both begin with.
static size_t LengthOfSame(const std::string& left, const std::string& right) {
    const size_t shorter = std::min(left.size(), right.size());
    const auto end = left.begin() + static_cast<std::ptrdiff_t>(shorter);
    return static_cast<size_t>(std::mismatch(left.begin(), end, right.begin()).first - left.begin());
}

std::string AroundDifference(const std::string& text, const std::string& other) {
    constexpr size_t longest = 60;
    constexpr size_t before = 20;
    const size_t at = LengthOfSame(text, other);
    if (at + before <= longest) return CutToWidth(text, longest);
    size_t begin = std::min(at, text.size()) - before;
    while (begin > 0 && (static_cast<unsigned char>(text[begin]) & 0xC0) == 0x80)
        --begin;
    return "…" + CutToWidth(text.substr(begin), longest);
}
