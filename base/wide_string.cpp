#include "base/wide_string.h"

#include "base/text_case.h"

WideString UpperCase(WideString text) {
    for (WCHAR& unit : text)
        unit = FoldCase(unit);
    return text;
}

bool EqualIgnoringCase(const WCHAR* left, const WCHAR* right) {
    while (*left != 0 && FoldCase(*left) == FoldCase(*right)) {
        ++left;
        ++right;
    }
    return FoldCase(*left) == FoldCase(*right);
}

void CopyBounded(WCHAR* buffer, size_t capacity, const WCHAR* text) {
    if (capacity == 0) return;
    size_t count = 0;
    for (; count + 1 < capacity && text[count] != 0; ++count)
        buffer[count] = text[count];
    buffer[count] = 0;
}
