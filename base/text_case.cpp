#include "base/text_case.h"

#include <algorithm>

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char unit) {
        return unit >= 'a' && unit <= 'z' ? static_cast<char>(unit - 'a' + 'A') : unit;
    });
    return upper;
}

bool SameName(std::string_view left, std::string_view right) {
    return left.size() == right.size() && UpperCase(left) == UpperCase(right);
}
