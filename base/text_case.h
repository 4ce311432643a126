// Text without regard to case, as the platform compares names: only the letters A to Z have two cases here.
#pragma once

#include <string>
#include <string_view>

// A code unit of narrow or wide text, with 'a' to 'z' folded to 'A' to 'Z'; every other unit is unchanged.
template <typename Unit>
constexpr Unit FoldCase(Unit unit) {
    return unit >= 'a' && unit <= 'z' ? static_cast<Unit>(unit - 'a' + 'A') : unit;
}

// The text, folded.
std::string UpperCase(std::string_view text);
// Whether two texts are equal once folded.
bool SameName(std::string_view left, std::string_view right);
