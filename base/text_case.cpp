#include "base/text_case.h"

#include <algorithm>

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), FoldCase<char>);
    return upper;
}

bool SameName(std::string_view left, std::string_view right) {
    return left.size() == right.size() && UpperCase(left) == UpperCase(right);
}
