#include "base/wide_string.h"

namespace {

WCHAR Fold(WCHAR unit) {
    return unit >= TEXT('a') && unit <= TEXT('z') ? static_cast<WCHAR>(unit - TEXT('a') + TEXT('A')) : unit;
}

}  // namespace

WideString UpperCase(WideString text) {
    for (WCHAR& unit : text)
        unit = Fold(unit);
    return text;
}

bool EqualIgnoringCase(const WCHAR* left, const WCHAR* right) {
    while (*left != 0 && Fold(*left) == Fold(*right)) {
        ++left;
        ++right;
    }
    return Fold(*left) == Fold(*right);
}

void CopyBounded(WCHAR* buffer, size_t capacity, const WCHAR* text) {
    if (capacity == 0) return;
    size_t count = 0;
    for (; count + 1 < capacity && text[count] != 0; ++count)
        buffer[count] = text[count];
    buffer[count] = 0;
}
