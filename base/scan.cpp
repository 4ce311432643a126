#include "base/scan.h"

namespace {

bool IsBlank(WCHAR unit) {
    return unit == TEXT(' ') || (unit >= TEXT('\t') && unit <= TEXT('\r'));
}

bool IsDigit(WCHAR unit) {
    return unit >= TEXT('0') && unit <= TEXT('9');
}

const WCHAR* SkipBlanks(const WCHAR* text) {
    while (IsBlank(*text))
        ++text;
    return text;
}

// Parses a signed decimal number and returns what follows it; null if there is none.
const WCHAR* ReadNumber(const WCHAR* text, int& number) {
    const bool negative = *text == TEXT('-');
    if (negative || *text == TEXT('+')) ++text;
    if (!IsDigit(*text)) return nullptr;
    unsigned value = 0;
    for (; IsDigit(*text); ++text)
        value = value * 10 + static_cast<unsigned>(*text - TEXT('0'));
    number = static_cast<int>(negative ? 0U - value : value);
    return text;
}

}  // namespace

int ScanNumbers(const WCHAR* text, const WCHAR* format, std::initializer_list<int*> numbers) {
    int stored = 0;
    auto output = numbers.begin();
    for (; *format != 0; ++format) {
        if (IsBlank(*format)) {
            text = SkipBlanks(text);
            continue;
        }
        const bool isNumber = format[0] == TEXT('%') && format[1] == TEXT('d');
        if (isNumber) text = SkipBlanks(text);
        if (*text == 0) return stored == 0 ? -1 : stored;
        if (!isNumber) {
            if (*text++ != *format) return stored;
            continue;
        }
        text = output != numbers.end() ? ReadNumber(text, **output) : nullptr;
        if (text == nullptr) return stored;
        ++output;
        ++stored;
        ++format;
    }
    return stored;
}
